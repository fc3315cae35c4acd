set(mac Libraries/Tessaro/Source/src/Mac)
tessio_add_tests(async_tests
    ${mac}/AsyncBrokenChannelTest.cpp
    ${mac}/AsyncConcurrencyTest.cpp
    ${mac}/AsyncEnablingTest.cpp
    ${mac}/AsyncFailuresTest.cpp
    ${mac}/AsyncLifetimeTest.cpp
    ${mac}/AsyncPositionsTest.cpp
    ${mac}/AsyncStressTest.cpp
    ${mac}/FileLossTest.cpp
    ${mac}/FileLockTest.cpp
    ${mac}/MAsyncReaderTest.cpp
    ${mac}/MAsyncTaskTest.cpp
    ${mac}/MAsyncWriterTest.cpp
    ${mac}/MFileDataProviderAsyncTest.cpp)
# For the headers beside the sources that they serve.
target_include_directories(async_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/Libraries/Tessaro/Source/src)
if(TESSIO_SANITIZE)
    target_compile_definitions(async_tests PRIVATE TESSIO_TEST_SANITIZED=true)
else()
    target_compile_definitions(async_tests PRIVATE TESSIO_TEST_SANITIZED=false)
endif()

tessio_add_tests(buffered_tests
    Libraries/Tessaro/Source/src/BufferedDataProviderBothTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderFieldsTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderFileTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderHarmTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderLifeTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderPositionTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderReadTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderRecordTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderTest.cpp
    Libraries/Tessaro/Source/src/BufferedDataProviderWriteTest.cpp)
# For the headers beside the sources that they serve.
target_include_directories(buffered_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/Libraries/Tessaro/Source/src)

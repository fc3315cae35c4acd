tessio_add_tests(conversion_tests
    Common/Constructs/UniCharUtils/CFMutableStringWrapperTest.cpp
    Common/Constructs/UniCharUtils/UniCharUtilsCopyTest.cpp
    Common/Constructs/UniCharUtils/UniCharUtilsNarrowTest.cpp
    Common/Constructs/UniCharUtils/UniCharUtilsTest.cpp
    Libraries/Tessaro/Source/src/FreedMemory.cpp
    Libraries/Tessaro/Source/src/Mac/MacConversionsFSRefTest.cpp
    Libraries/Tessaro/Source/src/Mac/MacConversionsRetryTest.cpp
    Libraries/Tessaro/Source/src/Mac/MacConversionsTest.cpp
    Libraries/Tessaro/Source/src/URIAuthenticationChallengeTest.cpp
    Libraries/Tessaro/Source/src/URICredentialTest.cpp)
# For the headers beside the sources that they serve.
target_include_directories(conversion_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/Libraries/Tessaro/Source/src)

tessio_add_tests(provider_tests
    Libraries/Tessaro/Source/src/DataProviderTest.cpp
    Libraries/Tessaro/Source/src/ProviderConformanceTest.cpp
    Libraries/Tessaro/Source/src/ProviderRows.cpp
    Libraries/Tessaro/Source/src/ReadOnlyDataProviderTest.cpp
    Libraries/Tessaro/Source/src/Mac/CreateSystemFileTest.cpp
    Libraries/Tessaro/Source/src/Mac/HandleDataProviderMemoryTest.cpp
    Libraries/Tessaro/Source/src/Mac/HandleDataProviderTest.cpp
    Libraries/Tessaro/Source/src/Mac/MFileDataProviderInitTest.cpp
    Libraries/Tessaro/Source/src/Mac/MFileDataProviderOpenTest.cpp
    Libraries/Tessaro/Source/src/Mac/MFileDataProviderTest.cpp)
# For the headers beside the sources that they serve.
target_include_directories(provider_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/Libraries/Tessaro/Source/src)

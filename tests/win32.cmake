# The platform's contract on the system's real calls, under Wine.
set(QX_GOOGLETEST /usr/src/googletest CACHE PATH "sources of GoogleTest, which is built for Windows here")
set(gtest_disable_pthreads ON)
set(INSTALL_GTEST OFF)
add_subdirectory(${QX_GOOGLETEST}/googletest ${CMAKE_CURRENT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

add_compile_options(-O0)
file(GLOB sources CONFIGURE_DEPENDS platform/*.cpp platform/*.h)
list(FILTER sources EXCLUDE REGEX "/host_[^/]*$")
add_executable(platform_tests ${sources} support/path_spellings.cpp support/pe_file.cpp)
target_include_directories(platform_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
# Before the system's own import libraries: the calls of the tests go the way that the library's go.
target_link_libraries(platform_tests PRIVATE coredll qxinstrument GTest::gtest ws2_32 qx_options)
target_precompile_headers(platform_tests PRIVATE <gtest/gtest.h>)
add_dependencies(platform_tests qxsystem)  # tests load it

# The real DLL as a C program and a C++ program load it.
add_executable(abi_tests abi/c_program.c abi/c_program.h abi/header_test.cpp)
target_include_directories(abi_tests PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(abi_tests PRIVATE qxcommmgr GTest::gtest_main qx_options)

# The prefix and its server are up for as long as tests run.
set(wine ${PROJECT_SOURCE_DIR}/scripts/wine)
set_target_properties(platform_tests abi_tests PROPERTIES CROSSCOMPILING_EMULATOR "${wine};run")
add_test(NAME wine.start COMMAND ${wine} start)
add_test(NAME wine.stop COMMAND ${wine} stop)
set_tests_properties(wine.start PROPERTIES FIXTURES_SETUP wine)
set_tests_properties(wine.stop PROPERTIES FIXTURES_CLEANUP wine)
foreach(folder platform abi)
  qx_list_tests(${folder}_tests ${folder})
endforeach()

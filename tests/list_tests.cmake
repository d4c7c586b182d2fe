# Tells ctest the tests of a program: one by one, or by suites (QX_TESTS_BY_SUITE), which run in half the time.
# On Windows they run through Wine, with its prefix up (the fixture wine).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(records ${CMAKE_BINARY_DIR}/records)
if(WIN32)
  set(through_wine --wine ${PROJECT_SOURCE_DIR}/scripts/wine)
  set(needs_wine FIXTURES_REQUIRED wine)
endif()

function(qx_list_tests name folder)
  if(QX_TESTS_BY_SUITE)
    qx_list_suites(${name} ${folder})
    return()
  endif()
  set(discovery TEST_PREFIX ${folder}. DISCOVERY_TIMEOUT 120)
  if(WIN32)
    list(APPEND discovery DISCOVERY_MODE PRE_TEST)
  endif()
  gtest_discover_tests(${name} ${discovery} TEST_FILTER "-*InTime*" PROPERTIES TIMEOUT 120 ${needs_wine})
  gtest_discover_tests(${name} ${discovery} TEST_FILTER "*InTime*" TEST_LIST ${name}_in_time
    PROPERTIES TIMEOUT 120 LABELS in_time ${needs_wine})
endfunction()

# The program is asked for its suites whenever ctest starts.
function(qx_list_suites name folder)
  set(list ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
  list(JOIN through_wine " " wine)
  file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}_include.cmake CONTENT "
execute_process(COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tests/suites.py $<TARGET_FILE:${name}> ${folder} ${records} ${list} ${wine}
  RESULT_VARIABLE result)
if(result EQUAL 0)
  include(\"${list}\")
else()
  add_test(${folder}.not_built ${name}_not_built)
endif()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}_include.cmake)
endfunction()

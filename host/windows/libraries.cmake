# QXHost.dll, the host and the simulated instrument in one, and in front of it the five libraries that the device has:
# each only hands its calls on. Linking one of the targets coredll, qxsystem, bthutil, paramblk, opvlib imports from
# that library as on the device.
file(GLOB_RECURSE windows_sources CONFIGURE_DEPENDS windows/*.cpp windows/*.h)
add_library(qxhost SHARED ${common_sources} ${instrument_sources} ${windows_sources} ${zones_source})
set_target_properties(qxhost PROPERTIES PREFIX "" OUTPUT_NAME QXHost
  ARCHIVE_OUTPUT_NAME qxhost IMPORT_SUFFIX .a ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
target_include_directories(qxhost SYSTEM BEFORE PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/windows/include)
target_include_directories(qxhost PUBLIC ${CMAKE_CURRENT_SOURCE_DIR} PRIVATE windows)
target_compile_definitions(qxhost PUBLIC ${battery_settings})
target_link_options(qxhost PRIVATE -Wl,--export-all-symbols)
target_link_libraries(qxhost PUBLIC qx_headers PRIVATE Threads::Threads qx_options version ntdll)
add_library(qxinstrument INTERFACE)
target_link_libraries(qxinstrument INTERFACE qxhost)

# The compiler's shared libraries lie beside the programs that need them.
foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${library})
  add_custom_command(OUTPUT ${copy} COMMAND ${CMAKE_STRIP} --strip-debug -o ${copy} ${path} DEPENDS ${path})
  list(APPEND runtime_libraries ${copy})
endforeach()
add_custom_target(qx_runtime DEPENDS ${runtime_libraries})
add_dependencies(qxhost qx_runtime)

# qx_forwarder(target name def): name.dll, which holds nothing but forwarders.
function(qx_forwarder target name def)
  add_library(${target} SHARED ${def})
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name} LINKER_LANGUAGE C
    ARCHIVE_OUTPUT_NAME ${target} IMPORT_SUFFIX .a ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
  target_link_options(${target} PRIVATE -nostdlib -Wl,--entry=0 -Wl,--no-insert-timestamp)
endfunction()

# qx_def(result template table): a .def with a row for each call of one of the library's tables.
function(qx_def result template table)
  add_custom_command(
    OUTPUT ${result}
    COMMAND ${CMAKE_CXX_COMPILER} -E -P -x c -DQX_BATTERY_QUERY_ORDINAL=${QX_BATTERY_QUERY_ORDINAL}
            -I ${PROJECT_SOURCE_DIR}/src -o ${result} ${CMAKE_CURRENT_SOURCE_DIR}/${template}
    DEPENDS ${template} ${PROJECT_SOURCE_DIR}/src/platform/${table})
endfunction()

qx_def(${CMAKE_CURRENT_BINARY_DIR}/QxSystem.def windows/libraries/QxSystem.def.in qxsystem_calls.h)
qx_def(${CMAKE_CURRENT_BINARY_DIR}/BTHUTIL.def windows/libraries/BTHUTIL.def.in bthutil_calls.h)
qx_forwarder(coredll COREDLL windows/libraries/COREDLL.def)
qx_forwarder(qxsystem QxSystem ${CMAKE_CURRENT_BINARY_DIR}/QxSystem.def)
qx_forwarder(bthutil BTHUTIL ${CMAKE_CURRENT_BINARY_DIR}/BTHUTIL.def)
qx_forwarder(paramblk ParamBlk windows/libraries/ParamBlk.def)
qx_forwarder(opvlib OPVLIB windows/libraries/OPVLIB.def)

# QXCommMgr.dll, in two builds that differ in the two battery settings alone:
#
#   qxcommmgr_device  device/QXCommMgr.dll: the one that ships, for an instrument with these settings
#   qxcommmgr         bin/QXCommMgr.dll: for the simulated instrument, beside the programs that load it
set(QX_DEVICE_BATTERY_QUERY_ORDINAL 0 CACHE STRING "ordinal of the instrument's battery query in QxSystem.dll; 0 = none")
set(QX_DEVICE_BATTERY_EVENT_MASK 0 CACHE STRING "event mask of a battery change on the instrument; 0 = none")
# Targets of host/windows, which have the ordinals and names of the instrument's; or the instrument's own, as paths.
set(QX_IMPORT_LIBRARIES coredll qxsystem bthutil paramblk opvlib CACHE STRING "import libraries of the platform")

# Small, and the same bytes wherever it is built.
set(compile_options -Os -ffunction-sections -fdata-sections -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
set(runtime ${PROJECT_SOURCE_DIR}/runtime)  # what keeps large parts of this compiler's runtime out of the DLL
if(MINGW)
  list(APPEND compile_options -include ${runtime}/own_strings.h)
  set(runtime_sources ${runtime}/terminate.cpp)
endif()
set(link_options -static -Os -s -Wl,--gc-sections -Wl,--no-insert-timestamp)
target_compile_options(qxcommmgr_parts PRIVATE ${compile_options})

set(version_resource ${CMAKE_CURRENT_BINARY_DIR}/version.rc)
configure_file(api/version.rc.in ${version_resource} @ONLY)

# Defines the target; the two calls that know the battery are compiled for it, all else comes from the parts.
function(qx_dll target folder battery_ordinal battery_mask)
  add_library(${target} SHARED api/QXCommMgr.def platform/battery_query.cpp ${runtime_sources} ${version_resource})
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME QXCommMgr
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder} ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${folder})
  target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} INTERFACE ${PROJECT_SOURCE_DIR}/include)
  target_compile_definitions(${target} PRIVATE
    QX_BATTERY_QUERY_ORDINAL=${battery_ordinal} QX_BATTERY_EVENT_MASK=${battery_mask})
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${compile_options}>)
  target_link_options(${target} PRIVATE ${link_options})
  target_link_libraries(${target} PRIVATE qxcommmgr_parts ${QX_IMPORT_LIBRARIES} qx_options)
endfunction()

qx_dll(qxcommmgr bin ${QX_BATTERY_QUERY_ORDINAL} ${QX_BATTERY_EVENT_MASK})
qx_dll(qxcommmgr_device device ${QX_DEVICE_BATTERY_QUERY_ORDINAL} ${QX_DEVICE_BATTERY_EVENT_MASK})

# Header-only libraries for the cross compiler: a folder with links to just these folders of the system's own headers,
# which must not be on its path themselves. Linking qx_headers finds them.
set(QX_SYSTEM_HEADERS /usr/include CACHE PATH "where the headers of Boost, nlohmann-json and CLI11 are installed")
set(links ${CMAKE_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${links})
foreach(folder boost nlohmann CLI)
  if(EXISTS ${QX_SYSTEM_HEADERS}/${folder})
    file(CREATE_LINK ${QX_SYSTEM_HEADERS}/${folder} ${links}/${folder} SYMBOLIC)
  endif()
endforeach()
add_library(qx_headers INTERFACE)
target_include_directories(qx_headers SYSTEM INTERFACE ${links})

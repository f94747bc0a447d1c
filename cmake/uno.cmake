# What components for LibreOffice are made with: its SDK, and headers of all its types, made once from its registries.
find_path(UNO_SDK include/sal/types.h
  PATHS /usr/lib/libreoffice/sdk /usr/lib64/libreoffice/sdk /opt/libreoffice/sdk NO_DEFAULT_PATH REQUIRED)
cmake_path(GET UNO_SDK PARENT_PATH UNO_OFFICE)
set(UNO_PROGRAM "${UNO_OFFICE}/program")

set(headers "${PROJECT_BINARY_DIR}/uno")
set(registries "${UNO_PROGRAM}/types.rdb" "${UNO_PROGRAM}/types/offapi.rdb")
add_custom_command(OUTPUT "${headers}/stamp"
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${headers}"
  COMMAND "${UNO_SDK}/bin/cppumaker" -Gc "-O${headers}" ${registries}
  COMMAND "${CMAKE_COMMAND}" -E touch "${headers}/stamp"
  DEPENDS ${registries} COMMENT "Making the headers of the office's types" VERBATIM)
add_custom_target(uno_headers DEPENDS "${headers}/stamp")

add_library(rowlark_uno INTERFACE)
add_dependencies(rowlark_uno uno_headers)
target_include_directories(rowlark_uno SYSTEM INTERFACE "${UNO_SDK}/include" "${headers}")
target_compile_definitions(rowlark_uno INTERFACE UNX GCC LINUX CPPU_ENV=gcc3)
target_link_directories(rowlark_uno INTERFACE "${UNO_SDK}/lib")
target_link_libraries(rowlark_uno INTERFACE uno_cppuhelpergcc3 uno_cppu uno_salhelpergcc3 uno_sal)

# rowlark_component(NAME FILE SOURCES ... DEPENDS ...) makes the library FILE.uno.so that the office loads; it finds the
# office's own libraries loaded.
function(rowlark_component name file)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "SOURCES;DEPENDS")
  add_library(${name} MODULE ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE rowlark_options rowlark_uno ${arg_DEPENDS})
  target_link_options(${name} PRIVATE -Wl,-z,defs)
  rowlark_compiled(${name})
  set_target_properties(${name} PROPERTIES
    DISABLE_PRECOMPILE_HEADERS ON PREFIX "" OUTPUT_NAME "${file}" SUFFIX ".uno.so" LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()

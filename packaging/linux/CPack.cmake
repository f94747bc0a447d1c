# What CPack makes: rowlark-VERSION-linux-CPU.tar.gz, which runs from wherever it is unpacked, and Debian packages of the
# program and of the core for other programs.
set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME rowlark)
set(CPACK_PACKAGE_VENDOR Vantrel)
set(CPACK_PACKAGE_CONTACT "Vantrel <info@rowlark.example.com>")
set(CPACK_PACKAGE_FILE_NAME "rowlark-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_SOURCE_DIR}/generators.cmake")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
# The same sources make the same bytes.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/times.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/order.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://rowlark.example.com")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME rowlark)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "search in tables as you type
Opens tables (CSV, spreadsheet workbooks) in a terminal, where typing leaves
only the rows that match. Cells can be edited, and scripts search as well.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME librowlark-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "search in tables as you type - core for other programs
Static library, headers and CMake package of the core of Rowlark: the search,
the forms, the sheet model, the interfaces to a spreadsheet and a screen.")
include(CPack)

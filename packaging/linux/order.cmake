# Makes the .tar.gz anew, since CPack takes files in the order in which the folders have them, and with their owners.
if(CPACK_GENERATOR STREQUAL "TGZ")
  cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH place)
  execute_process(COMMAND tar --create --sort=name --owner=root:0 --group=root:0 --directory "${place}" "${CPACK_PACKAGE_FILE_NAME}"
                  COMMAND gzip --best --no-name
                  OUTPUT_FILE "${CPACK_PACKAGE_FILES}"
                  COMMAND_ERROR_IS_FATAL ANY)
endif()

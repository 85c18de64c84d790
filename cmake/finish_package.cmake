# Run by CPack on the packages that it has made.
if(CPACK_GENERATOR STREQUAL "DEB")
  foreach(package IN LISTS CPACK_PACKAGE_FILES)
    execute_process(COMMAND ${CPACK_MIREL_FINISH} ${package} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endif()

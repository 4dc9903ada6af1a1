# Read by CPack once per generator.
if(CPACK_GENERATOR STREQUAL "NSIS")
  string(APPEND CPACK_PACKAGE_FILE_NAME -Setup)
endif()

# Component "client": the host library, for clients that want more than the framework's declarations. It needs "plugin".

install(TARGETS recording-host recording-protocol EXPORT RecordingManagementClient
    ARCHIVE DESTINATION "${RECORDING_LIB_DIR}" COMPONENT client)
install(EXPORT RecordingManagementClient FILE RecordingManagement-client.cmake NAMESPACE RecordingManagement::
    DESTINATION "${RECORDING_CMAKE_DIR}" COMPONENT client)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/host/" DESTINATION "${RECORDING_INCLUDE_DIR}/client" COMPONENT client
    FILES_MATCHING PATTERN "*.h" PATTERN embedded EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/protocol/" DESTINATION "${RECORDING_INCLUDE_DIR}/protocol" COMPONENT client
    FILES_MATCHING PATTERN "*.h")
install_pkg_config(client client)

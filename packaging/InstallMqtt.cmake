# Component "client", too: the link to stations behind a broker, for clients that ask find_package() for "mqtt".

install(TARGETS recording-host-mqtt recording-mqtt EXPORT RecordingManagementMqtt
    ARCHIVE DESTINATION "${RECORDING_LIB_DIR}" COMPONENT client)
install(EXPORT RecordingManagementMqtt FILE RecordingManagement-mqtt.cmake NAMESPACE RecordingManagement::
    DESTINATION "${RECORDING_CMAKE_DIR}" COMPONENT client)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/mqtt" DESTINATION "${RECORDING_INCLUDE_DIR}" COMPONENT client
    FILES_MATCHING PATTERN "*.h")
install_pkg_config(mqtt client)

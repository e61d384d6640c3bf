# Component "plugin": the plug-in, its QML types, and what clients include to talk to it.

install(TARGETS PluginRecordingManagement LIBRARY DESTINATION "${RECORDING_PLUGIN_DIR}" COMPONENT plugin)
install(FILES "${PROJECT_BINARY_DIR}/${RECORDING_PLUGIN_DIR}/PluginRecordingManagement.version"
    DESTINATION "${RECORDING_PLUGIN_DIR}" COMPONENT plugin)

set(types_folder "${RECORDING_QML_DIR}/com/meridon/pluginrecordingmanagement")
install(FILES "${PROJECT_BINARY_DIR}/${types_folder}/plugins.qmltypes" "${PROJECT_BINARY_DIR}/${types_folder}/qmldir"
    DESTINATION "${types_folder}" COMPONENT plugin)

install(DIRECTORY "${RECORDING_PLUGIN_SOURCE}/framework" "${RECORDING_PLUGIN_SOURCE}/interface"
    "${PROJECT_BINARY_DIR}/include/interface"
    DESTINATION "${RECORDING_INCLUDE_DIR}" COMPONENT plugin FILES_MATCHING PATTERN "*.h")

# find_package(RecordingManagement COMPONENTS plugin) and pkg-config.
set(RECORDING_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/RecordingManagement")
set(RECORDING_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

configure_package_config_file(RecordingManagementConfig.cmake.in RecordingManagementConfig.cmake
    INSTALL_DESTINATION "${RECORDING_CMAKE_DIR}"
    PATH_VARS RECORDING_PLUGIN_DIR RECORDING_QML_DIR)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
else()
    set(compatibility SameMajorVersion)
endif()
write_basic_package_version_file(RecordingManagementConfigVersion.cmake COMPATIBILITY ${compatibility})
install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/RecordingManagementConfig.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/RecordingManagementConfigVersion.cmake"
    DESTINATION "${RECORDING_CMAKE_DIR}" COMPONENT plugin)
install(TARGETS recording-framework EXPORT RecordingManagementPlugin)
install(EXPORT RecordingManagementPlugin FILE RecordingManagement-plugin.cmake NAMESPACE RecordingManagement::
    DESTINATION "${RECORDING_CMAKE_DIR}" COMPONENT plugin)

# install_pkg_config(NAME COMPONENT): a file that can be moved together with what it describes.
function(install_pkg_config name component)
    file(RELATIVE_PATH prefix_from_here "/${RECORDING_PKGCONFIG_DIR}" "/")
    string(REGEX REPLACE "/$" "" prefix_from_here "${prefix_from_here}")
    configure_file(recording-management-${name}.pc.in recording-management-${name}.pc @ONLY)
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/recording-management-${name}.pc"
        DESTINATION "${RECORDING_PKGCONFIG_DIR}" COMPONENT ${component})
endfunction()
install_pkg_config(plugin plugin)

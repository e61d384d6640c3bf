# Where things lie, in the build tree as in the installed one: an app finds the plug-in, the QML types and the trace
# library by the same relative path in both.

set(RECORDING_LIB_DIR "${CMAKE_INSTALL_LIBDIR}")
set(RECORDING_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/qt6/plugins/recordingmanagement")
set(RECORDING_QML_DIR "${CMAKE_INSTALL_LIBDIR}/qt6/qml")

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}")

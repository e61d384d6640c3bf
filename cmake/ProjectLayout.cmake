# Where things lie, in the build tree as in the installed one: an app finds the plug-in, the QML types and the trace
# library by the same relative path in both.

set(RECORDING_LIB_DIR "${CMAKE_INSTALL_LIBDIR}")
set(RECORDING_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/qt6/plugins/recordingmanagement")
set(RECORDING_QML_DIR "${CMAKE_INSTALL_LIBDIR}/qt6/qml")
set(RECORDING_PROGRAM_LIB_DIR "${CMAKE_INSTALL_LIBDIR}/recordingmanagement") # of our programs alone
set(RECORDING_INCLUDE_DIR "${CMAKE_INSTALL_INCLUDEDIR}/recordingmanagement")

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}")

# Where the loader looks for libraries: where the system has them, and in the folder of a Qt that is not the system's. All
# that we build beside a program, it loads by a path of its own. Qt's set-up would give its own choice to every target. What
# is built has the same path as what is installed: where CMake exchanges them, it pads the first with empty entries, and the
# loader takes those for the current folder.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$CACHE{CMAKE_INSTALL_RPATH}")
if(NOT DEFINED CMAKE_INSTALL_RPATH_USE_LINK_PATH)
    set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)
endif()

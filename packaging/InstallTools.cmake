# Component "tools": the console and recordingctl. Component "tracelog", only where it is asked for: under its name the
# stand-in for the trace library could hide the client's own.

install(TARGETS recordingctl recording-console RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
install(TARGETS ZarnLogUtl LIBRARY DESTINATION "${RECORDING_LIB_DIR}" COMPONENT tracelog EXCLUDE_FROM_ALL)

# The programs load it by its path; no loader finds it by its name. See PluginHost::traceLibraryOfPrograms().
install(FILES "$<TARGET_FILE:ZarnLogUtl>" DESTINATION "${RECORDING_PROGRAM_LIB_DIR}"
    PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ RENAME tracelog.so COMPONENT tools)


install(FILES com.meridon.RecordingConsole.desktop DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT tools)
install(FILES com.meridon.RecordingConsole.metainfo.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo" COMPONENT tools)
install(FILES com.meridon.RecordingConsole.svg DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT tools)
install_manual(recordingctl 1 tools)
install_manual(recording-console 1 tools)

# Component "station": the station as a service.

set(RECORDING_UNIT_DIR lib/systemd/system CACHE STRING "Where systemd's units are installed")

install(TARGETS recording-stationd RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT station)

# The unit names the paths of the prefix that is installed to, which only the installation knows. An administrator's
# configuration is never replaced.
set(station_source "${PROJECT_SOURCE_DIR}/apps/recording-stationd")
install(CODE "
    set(bin \"${CMAKE_INSTALL_BINDIR}\")
    set(etc \"${CMAKE_INSTALL_SYSCONFDIR}/recording-station\")
    set(unit \"${RECORDING_UNIT_DIR}/recording-stationd.service\")
    cmake_path(ABSOLUTE_PATH bin BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
    cmake_path(ABSOLUTE_PATH etc BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
    cmake_path(ABSOLUTE_PATH unit BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\" NORMALIZE)
    set(RECORDING_STATIOND \"\${bin}/recording-stationd\")
    set(RECORDING_STATION_CONFIG \"\${etc}/recording-stationd.conf\")
    message(STATUS \"Installing: \$ENV{DESTDIR}\${unit}\")
    configure_file(\"${station_source}/recording-stationd.service.in\" \"\$ENV{DESTDIR}\${unit}\" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${unit}\")
    if(NOT EXISTS \"\$ENV{DESTDIR}\${etc}/recording-stationd.conf\")
        file(INSTALL \"${station_source}/recording-stationd.conf\" DESTINATION \"\${etc}\")
    endif()
" COMPONENT station)
install(FILES "${station_source}/recording-station.conf" DESTINATION lib/sysusers.d COMPONENT station)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/share/broker" DESTINATION "${CMAKE_INSTALL_DATADIR}/recording-station"
    COMPONENT station USE_SOURCE_PERMISSIONS)
install_manual(recording-stationd 8 station)

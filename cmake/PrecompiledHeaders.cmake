# precompile_headers(TARGET...): the targets' files begin with what most of them include anyway, read once for all. Files
# include what they use all the same: builds without RECORDING_PRECOMPILE know nothing of this.

if(RECORDING_PRECOMPILE)
    add_library(recording-precompiled OBJECT "${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp")
    target_link_libraries(recording-precompiled PRIVATE Qt6::Core recording-options)
    target_precompile_headers(recording-precompiled PRIVATE
        <QByteArray> <QDateTime> <QDir> <QHash> <QList> <QObject> <QSet> <QString> <QStringList> <QTimer> <QVariant>
        <algorithm> <chrono> <functional> <map> <memory> <optional> <string> <vector>)
endif()

function(precompile_headers)
    if(RECORDING_PRECOMPILE)
        foreach(target IN LISTS ARGV)
            target_precompile_headers(${target} REUSE_FROM recording-precompiled)
            get_target_property(type ${target} TYPE)
            if(type STREQUAL "EXECUTABLE") # as the headers were read; some builds of Qt ask for it, others do not
                target_compile_options(${target} PRIVATE -fPIC)
            endif()
        endforeach()
    endif()
endfunction()

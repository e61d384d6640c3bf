# One interface target carries what every target is built with: language, warnings, sanitizers, coverage. Whether warnings
# are errors is CMAKE_COMPILE_WARNING_AS_ERROR: the presets of development say so, a packager's build does not.

option(RECORDING_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(RECORDING_FUZZ "Build what feeds the reader of messages with hostile ones; clang alone can" OFF)
option(RECORDING_PRECOMPILE "Read the headers that most files share once; g++ builds in two thirds of the time" OFF)
option(RECORDING_COVERAGE "Count which lines the tests run" OFF)

if(NOT PROJECT_IS_TOP_LEVEL)
    set(CMAKE_COMPILE_WARNING_AS_ERROR OFF) # another project's compiler may warn of more
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(recording-options INTERFACE)
target_compile_features(recording-options INTERFACE cxx_std_20)
target_compile_options(recording-options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
target_compile_definitions(recording-options INTERFACE QT_DISABLE_DEPRECATED_BEFORE=0x060800)

if(RECORDING_SANITIZE)
    # vptr: a client and the plug-in each have their own declaration of the interface between them, as is meant.
    # null, alignment: a third of the build's time, for what AddressSanitizer reports as well and for casts that nobody
    # writes here.
    target_compile_options(recording-options INTERFACE
        -fsanitize=address,undefined -fno-sanitize=vptr,null,alignment -fno-sanitize-recover=undefined
        -fno-omit-frame-pointer)
    target_link_options(recording-options INTERFACE -fsanitize=address,undefined)
endif()

if(RECORDING_FUZZ)
    target_compile_options(recording-options INTERFACE -fsanitize=fuzzer-no-link -O1)
endif()

if(RECORDING_COVERAGE)
    target_compile_options(recording-options INTERFACE --coverage)
    target_link_options(recording-options INTERFACE --coverage)
endif()

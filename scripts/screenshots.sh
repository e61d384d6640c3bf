# shellcheck shell=bash
# Pictures of every page of the console, and of some dialogs, in the states that a designer has to see. Sourced by scripts/run.

# picture_set DIR OPTION...: every page, light and dark, in three sizes.
picture_set() {
    local folder=$1
    shift
    mkdir -p -- "$folder"
    "$binaries/recording-console" --platform offscreen --screenshots "$folder" "$@" >/dev/null
    printf '%s\n' "$folder"
}

# ctl STATION ARGUMENT...
ctl() {
    local station=$1
    shift
    "$binaries/recordingctl" --data "$station" "$@" >/dev/null
}

station_process() {
    pgrep --full -- "recording-stationd .*--data $1\$"
}

picture_empty_station() {
    picture_set "$1/empty" --data "$work/empty"
}

picture_sample() {
    ctl "$work/sample" site-sample
    picture_set "$1/sample" --data "$work/sample"
}

# A removed group leaves its recordings.
picture_unassigned() {
    ctl "$work/unassigned" site-sample
    ctl "$work/unassigned" group-remove Warehouse
    picture_set "$1/no-group" --data "$work/unassigned"
}

picture_many_groups() {
    local number
    mkdir -p -- "$work/recordings"
    for number in {1..200}; do
        ctl "$work/many" camera-add "Camera $number"
        ctl "$work/many" group-add "Group $number" --path "$work/recordings" --reserve 0 \
            --member "Camera $number" --reserved-time 14400
    done
    picture_set "$1/groups-200" --data "$work/many"
}

# A disk that is there when the group is made, and then is not. Only root can mount one; for others a folder stands for it.
picture_lost_disk() {
    local disk=$work/disk
    mkdir -p -- "$disk"
    ctl "$work/lost" site-sample
    if ((EUID == 0)) && truncate --size 64M "$work/disk.image" && mkfs.ext4 -q "$work/disk.image" &&
        mount -o loop "$work/disk.image" "$disk" 2>/dev/null; then
        ctl "$work/lost" group-add Yard --path "$disk" --reserve 0
        umount "$disk"
    else
        printf 'No disk can be mounted here: a folder that goes stands for it.\n'
        ctl "$work/lost" group-add Yard --path "$disk" --reserve 0
        rmdir -- "$disk"
    fi
    picture_set "$1/lost-disk" --data "$work/lost"
}

# The station answers for the first page and then says nothing more, as on a machine that is overloaded.
picture_slow_station() {
    local folder=$1/slow-station process console
    ctl "$work/slow" site-sample
    process=$(station_process "$work/slow")
    mkdir -p -- "$folder"
    picture_set "$folder" --data "$work/slow" --after 1 &
    console=$!
    until [[ -n $(find "$folder" -name '*.png' -print -quit) ]] || ! kill -0 "$console" 2>/dev/null; do
        sleep 0.1
    done
    kill -STOP "$process"
    wait "$console" || { kill -CONT "$process" && return 1; }
    kill -CONT "$process"
}

# take_site_screenshots BINARIES DIR: of stations of their own, which are gone afterwards.
take_site_screenshots() {
    local folder=$2
    binaries=$1
    work=$(mktemp --directory --tmpdir recording-screenshots.XXXXXX)
    trap 'report_failed_step; end_site_stations' EXIT
    mkdir -m 700 -- "$work/runtime"
    export RECORDING_TRACE_LEVEL=${RECORDING_TRACE_LEVEL:-off} XDG_RUNTIME_DIR=$work/runtime
    step "An empty station" picture_empty_station "$folder"
    step "The sample site" picture_sample "$folder"
    step "Recordings of no group" picture_unassigned "$folder"
    step "200 recording groups" picture_many_groups "$folder"
    step "A lost disk" picture_lost_disk "$folder"
    step "A slow station" picture_slow_station "$folder"
}

end_site_stations() {
    local station process
    for station in empty sample unassigned many lost slow; do
        process=$(station_process "$work/$station") || continue
        kill -CONT "$process" && kill "$process"
        while kill -0 "$process" 2>/dev/null; do sleep 0.1; done
    done
    mountpoint --quiet -- "$work/disk" && umount -- "$work/disk"
    rm -rf -- "$work"
}

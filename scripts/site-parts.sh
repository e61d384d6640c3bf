# shellcheck shell=bash
# What scripts/site is made of.
#
# The site's folder:
#   processes     a line for each that was started: name, process, start time
#   environment, environment-viewer    what a console or recordingctl needs, for an operator and one who may only look
#   ca.pem, broker.*, passwords, access, roles
#   operator.password, viewer.password
#   station-N/    the data folder, the configuration, the password and the log of a station

data_home=${XDG_DATA_HOME:-}
[[ $data_home == /* ]] || data_home=${HOME:+$HOME/.local/share} # a relative one is to be ignored
default_site=${data_home:+$data_home/recording-site}
site=$default_site # its folder
stations=          # how many; empty: not said
port=              # of the broker; empty: one that is free
binaries=          # the folder of the programs; empty: they are to be built
broker_host=localhost
examples=${repository:?}/share/broker
listener= # the process that hears which stations came

# The broker lies where only root has its $PATH.
find_broker() {
    PATH=$PATH:/usr/sbin:/usr/local/sbin
    local program
    for program in mosquitto mosquitto_passwd mosquitto_sub openssl; do
        command -v "$program" >/dev/null ||
            fail "there is no $program; install Debian's packages mosquitto, mosquitto-clients and openssl"
    done
}

# Whoever makes the folder has the site; a second start at the same moment fails here.
make_folder() {
    umask 077
    mkdir -p -- "${site%/*}"
    mkdir -- "$site" 2>/dev/null || fail "the folder $site cannot be made: $(mkdir -- "$site" 2>&1 || true)"
    : >"$site/processes"
}

random_password() {
    openssl rand -hex 16
}

# --- certificates

make_certificates() {
    quietly "$examples/certificates" "$site" broker "$broker_host" 127.0.0.1
    rm -f -- "$site/ca.key" "$site/ca.srl" # nothing more is signed
}

# --- who may do what

# add_user NAME FILE: a new password in FILE, and in the list for the broker.
add_user() {
    local password
    password=$(random_password)
    printf '%s\n' "$password" >"$2"
    printf '%s:%s\n' "$1" "$password" >>"$site/passwords"
}

make_access() {
    local number
    add_user operator "$site/operator.password"
    add_user viewer "$site/viewer.password"
    for ((number = 1; number <= stations; ++number)); do
        mkdir -- "$site/station-$number"
        add_user "station-$number" "$site/station-$number/password"
    done
    quietly mosquitto_passwd -U "$site/passwords"
    printf 'operator = operator\nviewer = viewer\n' >"$site/roles"
    write_access >"$site/access"
}

# --- processes

# What the system has as the start of a process, which no later one of its number has; empty where it has ended.
start_of() {
    local stat
    { stat=$(<"/proc/$1/stat"); } 2>/dev/null || return 0
    read -r -a stat <<<"${stat##*)}"
    [[ ${stat[0]} == [ZX] ]] || printf '%s' "${stat[19]}"
}

# is_running PROCESS START
is_running() {
    [[ -n $2 && $(start_of "$1") == "$2" ]]
}

# start NAME LOG COMMAND...: as a process that outlives this script and its terminal.
start() {
    local name=$1 log=$2
    shift 2
    setsid -- "$@" </dev/null >>"$log" 2>&1 &
    local process=$!
    disown "$process"
    printf '%s %s %s\n' "$name" "$process" "$(start_of "$process")" >>"$site/processes"
}

last_line() {
    local line
    line=$(tail -n 1 -- "$1" 2>/dev/null) || true
    printf '%s' "${line:-its log says nothing}"
}

log_of() {
    if [[ $1 == broker ]]; then
        printf '%s' "$site/broker.log"
    else
        printf '%s' "$site/$1/log"
    fi
}

# Fails when a process of the site has ended.
require_all_running() {
    local name process start
    while read -r name process start; do
        is_running "$process" "$start" ||
            fail "the ${name/#station/station station} of the site in $site has ended: $(last_line "$(log_of "$name")")"
    done <"$site/processes"
}

# end_processes PATTERN: those whose names match; asked first, then made to.
end_processes() {
    local signal name process start attempt running
    for signal in TERM KILL; do
        for ((attempt = 0; attempt < 200; ++attempt)); do
            running=false
            while read -r name process start; do
                # shellcheck disable=SC2053 # a pattern
                if [[ $name != $1 ]] || ! is_running "$process" "$start"; then
                    continue
                fi
                running=true
                ((attempt > 0)) || kill -s "$signal" "$process" 2>/dev/null || true
            done <"$site/processes"
            $running || return 0
            sleep 0.05
        done
    done
    printf 'Processes of the site do not end; %s names them.\n' "$site/processes" >&2
    return 1
}

# --- the broker

is_port_taken() {
    (: </dev/tcp/127.0.0.1/"$1") 2>/dev/null
}

# One that nobody listens on now, below those that the system hands out by itself.
choose_port() {
    local attempt
    for ((attempt = 0; attempt < 100; ++attempt)); do
        port=$((20000 + RANDOM % 12000))
        is_port_taken "$port" || return 0
    done
    fail "no port is free; name one with --port"
}

start_broker() {
    local attempts=5 chosen=$port
    [[ -z $chosen ]] || attempts=1
    while ((attempts-- > 0)); do
        [[ -n $chosen ]] || choose_port
        ! is_port_taken "$port" || fail "something listens on port $port already; name another one with --port"
        write_broker_configuration >"$site/broker.conf"
        start broker "$site/broker.log" mosquitto -c "$site/broker.conf"
        if wait_for_broker; then
            return
        fi
        : >"$site/processes"
    done
    fail "the broker ended: $(last_line "$site/broker.log")"
}

# False when it ended, for instance as somebody took the port a moment ago.
wait_for_broker() {
    local attempt name process start
    read -r name process start <"$site/processes"
    for ((attempt = 0; attempt < 200; ++attempt)); do
        is_running "$process" "$start" || return 1
        # The port may be another program's while the broker fails to get it.
        ! grep -q ' running$' "$site/broker.log" || return 0
        sleep 0.05
    done
    fail "the broker does not begin to serve; its log is $site/broker.log"
}

write_broker_configuration() {
    printf 'user %s\nlog_dest stderr\npersistence_location %s/\n' "$(id -un)" "$site"
    sed -e "s#/etc/mosquitto/recording#$site#" -e "s#^listener .*#listener $port 127.0.0.1#" "$examples/mosquitto.conf"
}

# rules_of EXAMPLE USER: what the example's user may do, for another user.
rules_of() {
    sed -n "/^user $1\$/,/^\$/p" "$examples/access" | sed -E -e "/^\$/d" -e "s#(^user |/)$1(/|\$)#\1$2\2#"
    printf '\n'
}

write_access() {
    local number
    grep '^pattern ' "$examples/access"
    printf '\n'
    rules_of alice operator
    rules_of victor viewer
    for ((number = 1; number <= stations; ++number)); do
        rules_of north "station-$number"
    done
}

# --- the stations

station_url() {
    printf 'mqtts://%s@%s:%s' "$1" "$broker_host" "$port"
}

write_station_configuration() {
    cat <<TEXT
station-name = Station ${1#station-}
broker-ca = $site/ca.pem
broker-password-file = $site/$1/password
broker-roles = $site/roles
TEXT
}

# What a client of this user needs.
client_environment() {
    printf 'export RECORDING_CONNECT=%q\n' "mqtts://$1@$broker_host:$port/station-1"
    printf 'export RECORDING_BROKER_CA=%q\n' "$site/ca.pem"
    printf 'export RECORDING_BROKER_PASSWORD_FILE=%q\n' "$site/$1.password"
}

start_stations() {
    local number id
    for ((number = 1; number <= stations; ++number)); do
        id=station-$number
        quietly "$binaries/recordingctl" --connect "embedded:$site/$id/data" site-sample
        write_station_configuration "$id" >"$site/$id/recording-stationd.conf"
        start "$id" "$site/$id/log" "$binaries/recording-stationd" --config "$site/$id/recording-stationd.conf" \
            --data "$site/$id/data" --id "$id" --broker "$(station_url "$id")"
    done
    wait_for_stations
}

# Until the broker has heard of each.
wait_for_stations() {
    local -A present=()
    local topic status statuses listener deadline=$((SECONDS + 60))
    mkdir -- "$site/tools"
    printf '%s\n' "-h $broker_host" "-p $port" "--cafile $site/ca.pem" "-u operator" "-P $(<"$site/operator.password")" \
        >"$site/tools/mosquitto_sub"
    exec {statuses}< <(XDG_CONFIG_HOME=$site/tools exec mosquitto_sub -t 'recording/1/stations/+/status' -F %t 2>&1)
    listener=$!
    while ((${#present[@]} < stations)); do
        status=0
        read -r -t 0.2 topic <&"$statuses" || status=$?
        if ((status == 0)); then
            present[$topic]=yes
        elif ((status <= 128)); then
            fail "the broker cannot be asked for its stations; its log is $site/broker.log"
        else
            require_all_running
            ((SECONDS < deadline)) || fail "only ${#present[@]} of $stations stations came; their logs are in $site"
        fi
    done
    kill "$listener" 2>/dev/null || true
    listener=
    exec {statuses}<&-
    require_all_running
}

# --- the whole

# Said of a start that did not come to its end.
abandon_site() {
    report_failed_step
    trap - EXIT INT TERM HUP
    remove_site
}

remove_site() {
    [[ -z $listener ]] || kill "$listener" 2>/dev/null || true
    end_processes 'station-*' || exit 1
    end_processes broker || exit 1
    rm -rf -- "$site"
}

finish_site() {
    client_environment operator >"$site/environment"
    client_environment viewer >"$site/environment-viewer"
    printf 'stations=%q\nbinaries=%q\n' "$stations" "$binaries" >"$site/complete"
}

# A folder that is no site's, or somebody else's, is left alone.
require_site() {
    [[ -d $site && ! -L $site && -O $site && -f $site/processes ]] ||
        fail "the folder $site is no site of yours; name another one with --folder"
}

stop_site() {
    if [[ ! -e $site ]]; then
        printf 'No site runs in %s.\n' "$site"
        return
    fi
    require_site
    remove_site
    printf 'The site in %s has ended, and its folder is removed.\n' "$site"
}

describe_running_site() {
    require_site
    [[ -f $site/complete ]] ||
        fail "a site in $site is being set up, or its start was cut off; scripts/site --stop removes it"
    local wanted=$stations
    # shellcheck source=/dev/null
    source "$site/complete"
    require_all_running
    [[ -z $wanted || $wanted == "$stations" ]] ||
        fail "a site of $(stations_text) runs in $site already; scripts/site --stop ends it"
    printf 'This site runs already.\n'
    describe_site
}

stations_text() {
    if ((stations == 1)); then
        printf '1 station'
    else
        printf '%s stations' "$stations"
    fi
}

describe_site() {
    local names=station-1 of=
    ((stations == 1)) || names+=" to station-$stations"
    local console=
    [[ ! -x $binaries/recording-console ]] || console=$'\n'"  $binaries/recording-console"
    [[ $site == "$default_site" ]] || of=" --folder $site"
    cat <<TEXT
A site of $(stations_text) runs in $site: $names.

$(<"$site/environment")

These lines stand in $site/environment, those of somebody who may only look in $site/environment-viewer:

  source $site/environment$console
  $binaries/recordingctl volumes

scripts/site --stop$of ends it and removes the folder.
TEXT
}

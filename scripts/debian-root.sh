# shellcheck shell=bash
# A root folder of a release of Debian, and namespaces to work in. Sourced after scripts/lib.sh by scripts/test-debian13 and
# scripts/test-packages, which set $suite (bookworm, trixie), $cache and $mirror (empty: the one of this machine's apt).
suite='' cache='' mirror=''

# enter_namespaces ARGUMENT...: starts this script again as its second self, with --isolated and the arguments. Whatever ends
# the script ends its processes and mounts, too.
enter_namespaces() {
    ((EUID == 0)) || fail "only root may make and enter a root folder: sudo scripts/${0##*/}"
    command -v apt-get >/dev/null || fail "this needs a machine with apt"
    [[ -d $cache/root ]] || command -v debootstrap >/dev/null || fail "debootstrap is missing: apt-get install debootstrap"
    unshare --mount --pid --fork true || fail "this needs the right to mount (in a container: CAP_SYS_ADMIN)"
    trap - EXIT
    setpriv --pdeathsig KILL unshare --mount --pid --fork --kill-child --mount-proc "$0" --isolated "$@"
    exit
}

one_run_at_a_time() {
    mkdir -p "$cache"
    exec {lock}>"$cache/lock"
    if ! flock --nonblock "$lock"; then
        printf 'Waiting for another run in %s\n' "$cache"
        flock "$lock"
    fi
}

apt_mirror() {
    # shellcheck disable=SC2016 # apt-get's own variable
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' 'Component: main' |
        sed -n 1p
}

find_mirror() {
    [[ -z $mirror ]] || return 0
    mirror=$(apt_mirror)
    if [[ -z $mirror ]]; then
        quietly apt-get update -q
        mirror=$(apt_mirror)
    fi
    [[ -n $mirror ]] || fail "apt's sources name no mirror of Debian: tell one with --mirror"
}

# The proxies of apt's configuration; debootstrap asks the environment for them.
export_proxies() {
    local proxies
    proxies=$(apt-config shell http_proxy Acquire::http::Proxy https_proxy Acquire::https::Proxy)
    export http_proxy https_proxy
    eval "$proxies"
}

make_root() {
    local included=()
    find_mirror
    printf 'From %s to %s\n' "$mirror" "$cache/root"
    quietly /usr/lib/apt/apt-helper download-file "${mirror%/}/dists/$suite/InRelease" "$cache/InRelease" ||
        fail "$mirror has no $suite, or this machine does not reach it"
    export_proxies
    if [[ $mirror == https:* ]]; then
        included=(--include=ca-certificates)
    fi
    rm -rf --one-file-system "$cache/root.new"
    quietly debootstrap --variant=minbase --force-check-gpg "${included[@]}" "$suite" "$cache/root.new" "$mirror"
    # Packages that are installed there start no service.
    printf '#!/bin/sh\nexit 101\n' >"$cache/root.new/usr/sbin/policy-rc.d"
    chmod +x "$cache/root.new/usr/sbin/policy-rc.d"
    mv "$cache/root.new" "$cache/root"
}

# set_up_network ROOT: what this machine may change from run to run: the way to the mirror, and its name, which SMB asks for.
set_up_network() {
    local root=$1
    apt-config dump --no-empty | grep -E '^Acquire::(https?|Check-)' >"$root/etc/apt/apt.conf.d/80machine" || true
    cp --dereference --remove-destination /etc/resolv.conf "$root/etc/resolv.conf"
    printf '127.0.0.1 localhost %s\n::1 localhost\n' "$(hostname)" >"$root/etc/hosts"
}

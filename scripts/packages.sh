# Sourced by the scripts: installs Debian packages that are missing, as root or with sudo.

need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local run=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "please install: ${missing[*]}" >&2
            return 1
        }
        run=(sudo)
    fi
    echo "installing: ${missing[*]}" >&2
    "${run[@]}" apt-get update -qq
    "${run[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

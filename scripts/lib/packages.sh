# Installs the packages of the named lists (files in scripts/packages) that this machine lacks, and nothing else.

install_packages() {
    local folder list package
    local -a missing=() apt=(apt-get)
    folder="$(dirname "${BASH_SOURCE[0]}")/../packages"
    for list in "$@"; do
        while read -r package; do
            if [[ -z $package || $package == \#* ]]; then
                continue
            fi
            if [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) != installed ]]; then
                missing+=("$package")
            fi
        done <"$folder/$list"
    done
    if ((${#missing[@]} == 0)); then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
            return 1
        fi
        apt=(sudo env DEBIAN_FRONTEND=noninteractive apt-get)
    fi
    # Another package run may hold the lock for minutes; an aged package list points at files that are gone.
    apt+=(-o DPkg::Lock::Timeout=900 -o Acquire::Retries=3 -qq)
    DEBIAN_FRONTEND=noninteractive "${apt[@]}" update </dev/null
    DEBIAN_FRONTEND=noninteractive "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null
}

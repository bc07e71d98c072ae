#!/usr/bin/env bash
# Installs the Debian packages that are still missing: install-packages.sh run|test|ci
#   run   to build and start the program
#   test  the same and what the tests need
#   ci    the same and the format and lint tools
# Asks for no password and touches no network where everything is there already.
set -euo pipefail

packages=(
    cmake ninja-build g++
    qt6-base-dev qt6-base-dev-tools qt6-serialport-dev qt6-svg-dev libsqlite3-dev mdbtools-dev pkg-config libx11-dev libxcb1-dev
    qt6-translations-l10n fonts-dejavu-core
)
test_packages=(xvfb xdotool xkb-data x11-xkb-utils x11-utils sqlite3 poppler-utils python3)
ci_packages=(git clang-format clang-tidy clang libclang-rt-14-dev)

case ${1-} in
    run) ;;
    test) packages+=("${test_packages[@]}") ;;
    ci) packages+=("${test_packages[@]}" "${ci_packages[@]}") ;;
    *)
        echo "usage: ${0##*/} run|test|ci" >&2
        exit 2
        ;;
esac

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "Это не Debian: пакеты не проверены. Нужны: ${packages[*]}" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $state == installed ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

echo "Не хватает пакетов: ${missing[*]}"
as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "Нет прав на установку и нет sudo. Поставьте пакеты от имени root:" >&2
        echo "  apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
    echo "Сейчас sudo может спросить пароль."
fi

apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

install() { apt install -y --no-install-recommends "${missing[@]}"; }

known=yes # do the package lists on this machine hold them all?
for package in "${missing[@]}"; do
    apt-cache show --no-all-versions "$package" >/dev/null 2>&1 || known=no
done

if [[ $known == no ]] || ! install; then # unknown, or the lists name versions that are gone
    apt update
    install
fi

#!/usr/bin/env bash
# Installs what is missing, builds the program, puts it into a folder of its own and starts it there.
#   ./run.sh [folder]      the folder is ~/zhurnal unless given
# Run again it puts the new program beside the old databases and layouts, which it leaves alone.
set -euo pipefail

die() {
    printf '%s\n' "$@" >&2
    exit 1
}

root=$(cd -- "$(dirname -- "$(realpath -- "${BASH_SOURCE[0]}")")" && pwd -P)

if (($# > 1)) || [[ ${1-} == -* ]]; then
    echo "Запуск: ${0##*/} [папка программы]; без папки — ~/zhurnal" >&2
    exit 2
fi
target=${1:-${HOME:?}/zhurnal}
target=$(realpath -m -- "$target")
if [[ $target/ == "$root"/* ]]; then
    die "Папка $target лежит внутри исходных текстов: при их очистке пропал бы журнал." \
        "Укажите другую папку, например: $0 ~/zhurnal-log"
fi

"$root/tools/install-packages.sh" run || die "Не удалось поставить нужные пакеты."

cd -- "$root"
build=$root/build/release
fresh=()
if [[ -e $build/CMakeCache.txt ]] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"; then
    fresh=(--fresh) # the checkout has moved since
fi
echo "Собираю программу..."
cmake "${fresh[@]}" --preset release || die "Не удалось подготовить сборку."
cmake --build --preset release || die "Сборка не удалась."

mkdir -p -- "$target" || die "Не удалось создать папку $target."
staging=$(mktemp -d -- "$target/.zhurnal-new.XXXXXX") || die "В папку $target нельзя записывать."
trap 'rm -rf -- "$staging"' EXIT
cmake --install "$build" --prefix "$staging" >/dev/null || die "Не удалось записать программу в папку $target."

# Every file takes its place by a rename: a running program keeps the file it was started from.
while IFS= read -r -d '' file; do
    case ${file,,} in
        *.mdb | *.rpt) [[ ! -e $target/$file ]] || continue ;;
    esac
    mkdir -p -- "$(dirname -- "$target/$file")"
    mv -fT -- "$staging/$file" "$target/$file" || die "Не удалось записать файл $target/$file."
done < <(find "$staging" -type f -printf '%P\0')
rm -rf -- "$staging"
trap - EXIT

if [[ -z ${DISPLAY-} && -z ${WAYLAND_DISPLAY-} ]]; then
    die "Программа установлена: $target/zhurnal" \
        "Для запуска нужен графический рабочий стол, а здесь его нет."
fi
echo "Запускаю $target/zhurnal"
cd -- "$target"
exec "$target/zhurnal"

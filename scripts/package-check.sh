#!/usr/bin/env bash
# Checks the packages that scripts/package.sh made, the way a user meets them:
#   linux    the .deb unpacked with dpkg-deb -x into a scratch root: its contents (libraries with
#            their SONAME links, headers, CMake package, pkg-config file, zulutil, manual page,
#            API reference) and its dependency on the PCRE2 runtime; the manual page rendered by
#            man without warnings; zulutil --version; a program built with pkg-config; the
#            examples and examples/consumer built with find_package(ZULFNDUTI) and run.
#   windows  the .zip unpacked: its contents (DLLs, import libraries, MinGW runtime, headers,
#            CMake package, zulutil.exe, API reference); the examples and the consumer cross-built
#            with the MinGW toolchain file against it and run under Wine with the package's bin
#            folder as their only source of DLLs.
# Each example's opening comment holds its output after "// Output:" as lines "// | <text>";
# the program's standard output must equal that text (Windows line ends read as "\n").
#
#   scripts/package-check.sh [PRESET...]     (default: linux windows)
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$PWD

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(linux windows)

version=$(sed -n 's/^project(ZULFNDUTI VERSION \([0-9][0-9.]*\).*/\1/p' CMakeLists.txt)
major=${version%%.*}
[ -n "$version" ] || { echo "package-check: no version in CMakeLists.txt" >&2; exit 2; }
examples=(cow_containers msf_container spawn_child thread_pool regex md5_blowfish)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "package-check: $*" >&2
  failures=$((failures + 1))
}

need_file() {
  [ -f "$1" ] || fail "missing from the package: ${1#"$work"/}"
}

# What both packages hold under their root (/usr in the .deb): headers without the private impl
# folders, the CMake package, the pkg-config file, the manual page and the API reference.
check_common_contents() {
  local root=$1
  for f in include/ZULFNDUTI/ZULFNDUTI_BasicUtils.h include/ZULFNDUTI/zul_Version.h \
           include/ZULFNDUTI/cow/cow_String.h lib/cmake/ZULFNDUTI/ZULFNDUTIConfig.cmake \
           lib/cmake/ZULFNDUTI/ZULFNDUTIConfigVersion.cmake lib/pkgconfig/ZULFNDUTI.pc \
           share/man/man1/zulutil.1 share/doc/zulfnduti/html/index.html; do
    need_file "$root/$f"
  done
  if find "$root/include" -path '*/impl/*' | grep -q .; then
    fail "private impl headers are in the package"
  fi
}

# The output an example's comment promises.
expected_output() {
  sed -n 's,^// |,,p' "$1" | sed 's,^ ,,'
}

# Runs one built example in a scratch directory and compares its output with its comment.
#   run_example NAME COMMAND...
run_example() {
  local name=$1
  shift
  local expected="$work/$name.expected" actual="$work/$name.out" run_dir="$work/run-$name"
  expected_output "examples/$name.cpp" >"$expected"
  if [ ! -s "$expected" ]; then
    fail "examples/$name.cpp has no \"// Output:\" block"
    return
  fi
  rm -rf "$run_dir"
  mkdir -p "$run_dir"
  local status=0
  (cd "$run_dir" && "$@") >"$actual.raw" 2>"$work/$name.err" || status=$?
  tr -d '\r' <"$actual.raw" >"$actual"
  if [ "$status" -ne 0 ]; then
    fail "$name exited with status $status"
    cat "$work/$name.err" >&2
  elif ! diff -u "$expected" "$actual" >"$work/$name.diff"; then
    fail "$name does not print what its comment says:"
    cat "$work/$name.diff" >&2
  else
    echo "example $name: output as documented"
  fi
}

check_linux() {
  local deb="build/linux/packages/zulfnduti_${version}_amd64.deb"
  [ -f "$deb" ] || { fail "no $deb (scripts/package.sh linux)"; return; }
  echo "== linux: $deb"

  local depends
  depends=$(dpkg-deb -f "$deb" Depends)
  echo "Depends: $depends"
  [[ "$depends" == *libpcre2-8-0* ]] || fail "the package does not depend on libpcre2-8-0"

  local root="$work/deb"
  dpkg-deb -x "$deb" "$root"
  local usr="$root/usr"
  for lib in ZULFNDUTI_CoreUtils ZULFNDUTI_BasicUtils; do
    need_file "$usr/lib/lib$lib.so.$version"
    [ "$(readlink "$usr/lib/lib$lib.so.$major" || true)" = "lib$lib.so.$version" ] ||
      fail "lib$lib.so.$major is not a link to lib$lib.so.$version"
    [ "$(readlink "$usr/lib/lib$lib.so" || true)" = "lib$lib.so.$major" ] ||
      fail "lib$lib.so is not a link to lib$lib.so.$major"
    readelf -d "$usr/lib/lib$lib.so.$version" | grep -q "Library soname: \[lib$lib.so.$major\]" ||
      fail "lib$lib.so.$version does not have the SONAME lib$lib.so.$major"
  done
  need_file "$usr/bin/zulutil"
  check_common_contents "$usr"

  # The manual page as `man zulutil` finds and renders it, without a formatter warning.
  [ "$(MANPATH="$usr/share/man" man -w zulutil 2>/dev/null)" = "$usr/share/man/man1/zulutil.1" ] ||
    fail "man does not find zulutil in the package's manual pages"
  MANWIDTH=80 man --warnings -l "$usr/share/man/man1/zulutil.1" >/dev/null 2>"$work/man.warnings" || true
  if [ -s "$work/man.warnings" ]; then
    fail "man reports warnings for zulutil.1:"
    cat "$work/man.warnings" >&2
  fi

  local said
  said=$(LD_LIBRARY_PATH="$usr/lib" "$usr/bin/zulutil" --version)
  [ "$said" = "zulutil $version" ] || fail "zulutil --version says \"$said\", not \"zulutil $version\""

  # pkg-config: the flags it gives build and link a client.
  local pc="$usr/lib/pkgconfig"
  [ "$(PKG_CONFIG_PATH="$pc" pkg-config --modversion ZULFNDUTI)" = "$version" ] ||
    fail "pkg-config does not give version $version"
  # shellcheck disable=SC2046
  if g++ -o "$work/pc-consumer" examples/consumer/main.cpp $(PKG_CONFIG_PATH="$pc" pkg-config --cflags --libs ZULFNDUTI) &&
     LD_LIBRARY_PATH="$usr/lib" "$work/pc-consumer" >/dev/null; then
    echo "pkg-config: a client builds and runs"
  else
    fail "the consumer does not build or run with pkg-config's flags"
  fi

  # find_package: every example and the consumer.
  local build="$work/examples-linux"
  if ! cmake -S examples -B "$build" -DCMAKE_PREFIX_PATH="$usr" -DCMAKE_BUILD_TYPE=RelWithDebInfo >"$work/linux-configure.log" 2>&1 ||
     ! cmake --build "$build" -j2 >"$work/linux-build.log" 2>&1; then
    cat "$work/linux-configure.log" "$work/linux-build.log" >&2 2>/dev/null || true
    fail "the examples do not build against the .deb"
    return
  fi
  local consumer_said
  if consumer_said=$(LD_LIBRARY_PATH="$usr/lib" "$build/consumer/consumer") &&
     [[ "$consumer_said" == "ZULFNDUTI $version (compiled against $version)"* ]]; then
    echo "consumer: ok"
  else
    fail "examples/consumer failed: $consumer_said"
  fi
  for name in "${examples[@]}"; do
    run_example "$name" env LD_LIBRARY_PATH="$usr/lib" "$build/$name"
  done
}

check_windows() {
  local zip="build/windows/packages/ZULFNDUTI-${version}-win64.zip"
  [ -f "$zip" ] || { fail "no $zip (scripts/package.sh windows)"; return; }
  echo "== windows: $zip"
  unzip -q "$zip" -d "$work/zip"
  local top="$work/zip/ZULFNDUTI-${version}-win64"
  for f in bin/ZULFNDUTI_CoreUtils.dll bin/ZULFNDUTI_BasicUtils.dll bin/zulutil.exe \
           bin/libstdc++-6.dll bin/libgcc_s_seh-1.dll bin/libwinpthread-1.dll \
           lib/ZULFNDUTI_CoreUtils.dll.a lib/ZULFNDUTI_BasicUtils.dll.a; do
    need_file "$top/$f"
  done
  check_common_contents "$top"

  local wine=/usr/lib/wine/wine64
  [ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)
  export WINEDEBUG=-all
  # Wine's own path form: the package's bin folder is where the programs find their DLLs.
  export WINEPATH="Z:${top//\//\\}\\bin"

  local said
  said=$("$wine" "$top/bin/zulutil.exe" --version | tr -d '\r')
  [ "$said" = "zulutil $version" ] || fail "zulutil.exe --version says \"$said\", not \"zulutil $version\""

  # The MinGW toolchain file re-roots searches into the MinGW sysroot: name the package directly.
  local build="$work/examples-windows"
  if ! cmake -S examples -B "$build" -DCMAKE_TOOLCHAIN_FILE="$source_dir/cmake/mingw-w64-x86_64.cmake" \
         -DZULFNDUTI_DIR="$top/lib/cmake/ZULFNDUTI" -DCMAKE_BUILD_TYPE=RelWithDebInfo >"$work/windows-configure.log" 2>&1 ||
     ! cmake --build "$build" -j2 >"$work/windows-build.log" 2>&1; then
    cat "$work/windows-configure.log" "$work/windows-build.log" >&2 2>/dev/null || true
    fail "the examples do not cross-build against the .zip"
    return
  fi
  local consumer_said
  if consumer_said=$("$wine" "$build/consumer/consumer.exe" | tr -d '\r') &&
     [[ "$consumer_said" == "ZULFNDUTI $version (compiled against $version)"* ]]; then
    echo "consumer.exe: ok"
  else
    fail "examples/consumer failed under Wine: $consumer_said"
  fi
  for name in "${examples[@]}"; do
    run_example "$name" "$wine" "$build/$name.exe"
  done
}

for preset in "${presets[@]}"; do
  case "$preset" in
    linux) check_linux ;;
    windows) check_windows ;;
    *) echo "package-check: unknown preset $preset" >&2; exit 2 ;;
  esac
done

if [ "$failures" -gt 0 ]; then
  echo "package-check: $failures failures" >&2
  exit 1
fi
echo "package-check: ${presets[*]} packages ok"

#!/usr/bin/env bash
# Installs the 32-bit toolchain and libraries the build needs, from Debian packages.
# Idempotent: does nothing when everything is already there.
set -euo pipefail

# Usage: setup.sh [fuzz] [coverage] — the extras add what scripts/fuzz.sh and
# scripts/coverage.sh need.
packages=(g++-multilib cmake pkgconf libgtest-dev:i386 libbenchmark-dev:i386 libffi-dev:i386)
for extra in "$@"; do
  case "$extra" in
    fuzz) command -v clang++ >/dev/null 2>&1 || packages+=(clang); packages+=(libclang-rt-dev) ;;
    coverage) packages+=(gcovr) ;;
    *) echo "setup: unknown extra $extra (fuzz, coverage)" >&2; exit 2 ;;
  esac
done

# Wanted but not needed: without libedit `ncl repl` reads plain lines.
optional=(libedit2:i386)

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q "install ok installed"; }
missing=()
for p in "${packages[@]}"; do
  installed "$p" || missing+=("$p")
done
missing_optional=()
for p in "${optional[@]}"; do
  installed "$p" || missing_optional+=("$p")
done
[ ${#missing[@]} -eq 0 ] && [ ${#missing_optional[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  $sudo dpkg --add-architecture i386
fi
# A mirror that is mid-sync can fail one index; the install below says whether it mattered.
for attempt in 1 2 3; do
  $sudo apt-get update -qq || true
  if [ ${#missing_optional[@]} -gt 0 ] &&
     DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing_optional[@]}"; then
    missing_optional=()
  fi
  if [ ${#missing[@]} -eq 0 ] || DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"; then
    missing=()
    [ ${#missing_optional[@]} -eq 0 ] && exit 0
  fi
  [ "$attempt" -lt 3 ] && sleep $((attempt * 10))
done
if [ ${#missing_optional[@]} -gt 0 ]; then
  echo "setup: could not install ${missing_optional[*]} (optional: ncl repl then reads plain lines)" >&2
fi
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: could not install ${missing[*]}" >&2
  exit 1
fi

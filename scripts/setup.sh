#!/usr/bin/env bash
# Installs the 32-bit toolchain and libraries the build needs, from Debian packages.
# Idempotent: does nothing when everything is already there.
set -euo pipefail

packages=(g++-multilib cmake pkgconf libgtest-dev:i386 libbenchmark-dev:i386 libffi-dev:i386)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  $sudo dpkg --add-architecture i386
fi
# A mirror that is mid-sync can fail one index; the install below says whether it mattered.
for attempt in 1 2 3; do
  $sudo apt-get update -qq || true
  if DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"; then
    exit 0
  fi
  sleep $((attempt * 10))
done
echo "setup: could not install ${missing[*]}" >&2
exit 1

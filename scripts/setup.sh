#!/bin/sh
# Installs the Debian packages the library, its tests, benchmarks, fuzzing harnesses and demo need.
# Skips apt entirely when everything is already there, so repeated runs are quick.
set -e
PACKAGES="cmake g++ make pkg-config libgl-dev libegl-dev libglu1-mesa-dev libx11-dev libgl1-mesa-dri \
  xvfb xauth libtinyxml-dev zlib1g-dev libfreetype-dev libfontconfig-dev fonts-liberation2 \
  libpng-dev libgtest-dev libgmock-dev libbenchmark-dev libmuparser-dev libssl-dev doxygen clang libclang-rt-14-dev locales"
missing=""
for p in $PACKAGES; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO=sudo
if [ -n "$missing" ]; then
  echo "setup: installing$missing"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends $missing
fi
# The converter's test compares its output under a locale that writes decimal commas.
if ! locale -a 2>/dev/null | grep -qix 'de_DE\.utf-\?8'; then
  echo "setup: making the locale de_DE.UTF-8"
  $SUDO localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi

#!/usr/bin/env bash
# Installs, with apt-get, the Debian packages the build and the tests need, only those missing.
set -euo pipefail

packages=(cmake make g++ clang libclang-rt-14-dev pkg-config ccache python3
          libexpat1-dev zlib1g-dev libpcre2-dev
          libgtest-dev libgmock-dev libbenchmark-dev rapidjson-dev valgrind
          openjdk-17-jdk-headless libfastinfoset-java)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done

if ((${#missing[@]} == 0)); then
  echo "install-deps: all packages present"
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
echo "install-deps: installing ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"

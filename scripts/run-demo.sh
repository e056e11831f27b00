#!/usr/bin/env bash
# Set-up, build, and run the demonstration of the object server.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build
./build/nvdl demo

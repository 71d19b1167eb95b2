#!/usr/bin/env bash
# Builds qx and lists the example project's components.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
bash "$here/scripts/build.sh" plain >/dev/null
"$here/build/bin/qx" list "$here/examples/Inventory/Inventory.vbp" "$@"

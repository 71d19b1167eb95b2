#!/usr/bin/env bash
# Builds qx and the IDE (only what it runs) and lists the example project's components.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
bash "$here/scripts/build.sh" plain qx qxvb6 >/dev/null
"$here/build/bin/qx" list "$here/examples/Inventory/Inventory.vbp" "$@"

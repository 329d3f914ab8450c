#!/usr/bin/env bash
# Runs the tour: scripts/tour.sh [--program PATH] [--output FOLDER]. See tests/tour/tour.py.
set -euo pipefail
exec </dev/null
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
# The system's own Python: python3-gi is installed for it and for no other.
exec /usr/bin/python3 -B "$root/tests/tour/tour.py" "$@"

#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the npm packages of the tests (the Model Context Protocol's client
# library for tests/mcp) as pinned in tests/mcp/package-lock.json.
set -euo pipefail
cd "$(dirname "$0")/../tests/mcp"
npm ci --no-audit --no-fund

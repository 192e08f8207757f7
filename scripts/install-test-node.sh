#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the npm packages of the tests (the Model Context Protocol's client
# library for tests/mcp) as pinned in tests/mcp/package-lock.json. They are
# installed in .cache/mcp-client, out of the source folders, and reached
# through a node_modules link at the top of the tree, where Node looks for
# them from tests/mcp/client.mjs upwards.
set -euo pipefail
cd "$(dirname "$0")/.."
stage=.cache/mcp-client
mkdir -p "$stage"
cp tests/mcp/package.json tests/mcp/package-lock.json "$stage/"
(cd "$stage" && npm ci --no-audit --no-fund)
rm -rf tests/mcp/node_modules
ln -sfn "$stage/node_modules" node_modules

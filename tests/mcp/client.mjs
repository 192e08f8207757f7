// SPDX-License-Identifier: GPL-3.0-or-later
//
// "vesko mcp" through the Model Context Protocol's own client library: the
// server's name, its four tools with their schemas, notes added, found and
// marked done through the running Vesko, and bad input answered with tool
// errors. Run in an X session on a private session bus:
//     node client.mjs PATH-TO-VESKO
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, chmodSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const vesko = process.argv[2];
assert.ok(vesko, "usage: node client.mjs PATH-TO-VESKO");

// Private folders, so that nothing of the user's is touched.
const root = mkdtempSync(join(tmpdir(), "vesko-mcp-"));
const env = { ...process.env, QT_QPA_PLATFORM: "xcb" };
for (const [variable, folder] of [["XDG_DATA_HOME", "data"], ["XDG_CONFIG_HOME", "config"],
    ["XDG_CACHE_HOME", "cache"], ["XDG_STATE_HOME", "state"], ["XDG_RUNTIME_DIR", "runtime"]]) {
    env[variable] = join(root, folder);
    mkdirSync(env[variable], { recursive: true });
}
chmodSync(env.XDG_RUNTIME_DIR, 0o700);
const libraryPath = join(env.XDG_DATA_HOME, "Vesko", "Library.json");

const text = (result) => result.content.filter((part) => part.type === "text").map((part) => part.text).join("\n");

const client = new Client({ name: "vesko-tests", version: "1.0.0" });
const transport = new StdioClientTransport({ command: vesko, args: ["mcp"], env, stderr: "inherit" });
try {
    await client.connect(transport);
    assert.equal(client.getServerVersion().name, "vesko");
    assert.ok(client.getServerCapabilities().tools);

    const { tools } = await client.listTools();
    assert.deepEqual(tools.map((tool) => tool.name).sort(), ["add_note", "list_notes", "search_notes", "set_done"]);
    const schemas = Object.fromEntries(tools.map((tool) => [tool.name, tool.inputSchema]));
    for (const schema of Object.values(schemas))
        assert.equal(schema.type, "object");
    assert.deepEqual(Object.keys(schemas.list_notes.properties).sort(), ["includeDone", "project", "section"]);
    assert.deepEqual(Object.keys(schemas.search_notes.properties).sort(), ["project", "query"]);
    assert.deepEqual(schemas.add_note.required, ["text"]);
    assert.deepEqual(schemas.set_done.required.sort(), ["done", "ids"]);

    // No Vesko runs yet: the first call starts one.
    const added = await client.callTool({ name: "add_note", arguments: { text: "Review the agent's plan", section: "Agents" } });
    assert.notEqual(added.isError, true, text(added));
    const id = /id: ([0-9a-f-]{36})/.exec(text(added))?.[1];
    assert.ok(id, text(added));
    await client.callTool({ name: "add_note", arguments: { text: "water the plants" } });

    let listed = await client.callTool({ name: "list_notes", arguments: {} });
    assert.match(text(listed), /- \[ \] Review the agent's plan \(id: [0-9a-f-]{36}, section: Agents\)/);
    assert.match(text(listed), /water the plants/);
    const found = await client.callTool({ name: "search_notes", arguments: { query: "AGENT" } });
    assert.match(text(found), /Review the agent's plan/);
    assert.doesNotMatch(text(found), /plants/);
    const nothing = await client.callTool({ name: "search_notes", arguments: { query: "zebra" } });
    assert.notEqual(nothing.isError, true);
    assert.match(text(nothing), /No note contains/);

    const done = await client.callTool({ name: "set_done", arguments: { ids: [id], done: true } });
    assert.notEqual(done.isError, true, text(done));
    listed = await client.callTool({ name: "list_notes", arguments: {} });
    assert.doesNotMatch(text(listed), /agent's plan/);
    listed = await client.callTool({ name: "list_notes", arguments: { section: "Agents", includeDone: true } });
    assert.match(text(listed), /- \[x\] Review the agent's plan/);

    // What the running Vesko refuses is a tool error with a clear text, and
    // changes nothing (every case, and the server's own: tst_commandline).
    const refused = await client.callTool({ name: "set_done", arguments: { ids: ["not-an-id"], done: true } });
    assert.equal(refused.isError, true);
    assert.match(text(refused), /No note has the id “not-an-id”/);
    // An unknown tool is the protocol's error, not a tool's result.
    await assert.rejects(client.callTool({ name: "delete_everything", arguments: {} }),
        (error) => error.code === -32602 && /Unknown tool/.test(error.message));
} finally {
    await client.close();
    spawnSync(vesko, ["quit"], { env, stdio: "inherit", timeout: 30000 });
}

// The changes are the running Vesko's: saved by it, in the library file.
let library = null;
for (let attempt = 0; attempt < 600; ++attempt) {
    try {
        library = JSON.parse(readFileSync(libraryPath, "utf8"));
        if (JSON.stringify(library).includes("agent's plan"))
            break;
    } catch {
        // not written yet
    }
    await new Promise((resolve) => setTimeout(resolve, 100));
}
const notes = library.projects.flatMap((project) => project.sections.flatMap((section) => section.notes));
assert.deepEqual(notes.map((note) => [note.text, note.isDone]).sort(),
    [["Review the agent's plan", true], ["water the plants", false]]);
rmSync(root, { recursive: true, force: true });
console.log("vesko mcp: all checks passed");

#include "Page/Template.h"

namespace TOOL
{
// Both panes hold only the lines in sight, so that large files stay quick.
char const kPageTemplate[] = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{{title}}</title>
<style>
:root { color-scheme: light dark; --line: 20px; --back: #fff; --fore: #1c1c1c; --dim: #666; --edge: #c8c8c8;
  --pick: #ffe9a8; --pickline: #8a5a00; --bad: #b00020; --name: #0b5394; --key: #6a1b9a; --value: #1b5e20; }
@media (prefers-color-scheme: dark) { :root { --back: #181818; --fore: #e8e8e8; --dim: #a0a0a0; --edge: #484848;
  --pick: #4d3f10; --pickline: #ffca55; --bad: #ff8a80; --name: #82b1ff; --key: #e1a6ff; --value: #a5d6a7; } }
* { box-sizing: border-box; }
html, body { margin: 0; height: 100%; background: var(--back); color: var(--fore); }
body { display: flex; flex-direction: column; font: 13px/1.4 system-ui, sans-serif; }
header { padding: 8px 12px; border-bottom: 1px solid var(--edge); }
h1 { font-size: 15px; margin: 0; overflow-wrap: anywhere; }
header p { margin: 2px 0 0; color: var(--dim); }
main { flex: 1; display: flex; min-height: 0; }
.pane { position: relative; overflow: auto; min-width: 0; font: 12px/var(--line) ui-monospace, "DejaVu Sans Mono", monospace; }
#tree { flex: 1 1 45%; border-right: 1px solid var(--edge); }
#bytes { flex: 1 1 55%; }
.pane:focus { outline: 2px solid var(--pickline); outline-offset: -2px; }
.row { position: absolute; left: 0; min-width: 100%; height: var(--line); white-space: pre; padding: 0 8px; cursor: default; }
.row.picked { background: var(--pick); box-shadow: inset 3px 0 0 var(--pickline); font-weight: 600; }
.dim { color: var(--dim); } .path { color: var(--key); } .kind { color: var(--name); } .bad { color: var(--bad); }
.key { color: var(--key); } .value, .type { color: var(--value); } .class { color: var(--name); } .unexplained { color: var(--bad); }
.b.picked { background: var(--pick); box-shadow: inset 0 -2px 0 var(--pickline); font-weight: 700; }
.b.within { background: var(--pick); box-shadow: inset 0 -1px 0 var(--edge); }
.b.cursor { outline: 1px solid var(--pickline); }
footer { padding: 6px 12px; border-top: 1px solid var(--edge); min-height: 3.4em; overflow-wrap: anywhere; }
footer p { margin: 0; }
@media (max-width: 700px) { main { flex-direction: column; } #tree { border-right: 0; border-bottom: 1px solid var(--edge); } }
</style>
</head>
<body>
<header><h1 id="file"></h1><p id="about"></p></header>
<main>
<div id="tree" class="pane" tabindex="0" role="tree" aria-label="Records"></div>
<div id="bytes" class="pane" tabindex="0" role="region" aria-label="Bytes"></div>
</main>
<footer><p id="status" aria-live="polite"></p>
<p class="dim">Arrow keys move, left and right close and open, Tab changes between records and bytes.</p></footer>
<script id="data" type="application/json">{{data}}</script>
<script>
'use strict';
(function () {
  var data = JSON.parse(document.getElementById('data').textContent);
  var raw = atob(data.bytes);
  var rows = data.rows;
  var height = 20, perLine = 16;
  var tree = document.getElementById('tree'), bytes = document.getElementById('bytes');
  var status = document.getElementById('status');
  var open = [], parents = [], children = [], fields = [], shown = [];
  var picked = -1, cursor = -1;

  // Rows stand in the order of the file; a record's rows are those behind it that lie deeper, and its own fields.
  var above = [];
  rows.forEach(function (row, index) {
    var isRecord = row.p !== undefined;
    var depth = isRecord ? row.d : row.d + 1;
    if (row.o + row.l > 0 && !isRecord && above.length &&
        row.o >= rows[above[0]].o + rows[above[0]].l) depth = 0;
    above.length = Math.min(above.length, depth);
    parents.push(above.length ? above[above.length - 1] : -1);
    children.push(0);
    if (above.length) children[above[above.length - 1]]++;
    open.push(isRecord && row.d < 1);
    if (isRecord) above.push(index); else fields.push(index);
  });

  function level(index) { var n = 0; for (var i = parents[index]; i >= 0; i = parents[i]) n++; return n; }
  function isBad(row) { return (row.f || []).some(function (f) { return f.severity === 'error'; }); }
  function visible(index) {
    for (var i = parents[index]; i >= 0; i = parents[i]) if (!open[i]) return false;
    return true;
  }
  function layOut() {
    shown = [];
    for (var i = 0; i < rows.length; i++) if (visible(i)) shown.push(i);
    tree.textContent = '';
    var spacer = document.createElement('div');
    spacer.style.height = shown.length * height + 'px';
    tree.appendChild(spacer);
    drawTree();
  }
  function span(parent, text, kind) {
    var element = document.createElement('span');
    if (kind) element.className = kind;
    element.textContent = text;
    parent.appendChild(element);
    return element;
  }
  function hex(number, digits) { return ('0000000' + number.toString(16)).slice(-digits); }

  function drawTree() {
    Array.prototype.slice.call(tree.querySelectorAll('.row')).forEach(function (row) { row.remove(); });
    var first = Math.max(0, Math.floor(tree.scrollTop / height) - 5);
    var last = Math.min(shown.length, first + Math.ceil(tree.clientHeight / height) + 10);
    for (var at = first; at < last; at++) {
      var index = shown[at], row = rows[index], isRecord = row.p !== undefined;
      var line = document.createElement('div');
      line.className = 'row' + (index === picked ? ' picked' : '');
      line.id = 'row' + index;
      line.style.top = at * height + 'px';
      line.setAttribute('role', 'treeitem');
      line.setAttribute('aria-level', level(index) + 1);
      line.setAttribute('aria-selected', index === picked);
      if (children[index]) line.setAttribute('aria-expanded', open[index]);
      span(line, new Array(level(index) + 1).join('  ') + (children[index] ? (open[index] ? '\u25be ' : '\u25b8 ') : '  '), 'dim');
      if (isRecord) {
        if (isBad(row)) span(line, '! ', 'bad');
        span(line, row.d ? row.p.slice(1) : row.p, 'path');
        span(line, '  ' + row.v, 'kind');
      } else {
        span(line, row.r === 'unexplained' ? '? unexplained' : row.n, row.r);
        span(line, row.v ? '  ' + row.v : '', '');
      }
      span(line, '  @' + row.o + ' +' + row.l, 'dim');
      line.dataset.index = index;
      tree.appendChild(line);
    }
  }

  function drawBytes() {
    Array.prototype.slice.call(bytes.querySelectorAll('.row')).forEach(function (row) { row.remove(); });
    var lines = Math.ceil(raw.length / perLine);
    var first = Math.max(0, Math.floor(bytes.scrollTop / height) - 5);
    var last = Math.min(lines, first + Math.ceil(bytes.clientHeight / height) + 10);
    var from = picked < 0 ? 0 : rows[picked].o, to = picked < 0 ? 0 : from + rows[picked].l;
    var mark = picked >= 0 && rows[picked].p !== undefined ? ' within' : ' picked';
    for (var at = first; at < last; at++) {
      var line = document.createElement('div');
      line.className = 'row';
      line.style.top = at * height + 'px';
      span(line, hex(at * perLine, 8) + '  ', 'dim');
      var text = '';
      for (var i = 0; i < perLine; i++) {
        var offset = at * perLine + i;
        if (offset >= raw.length) { span(line, '   ' + (i === 7 ? ' ' : ''), ''); continue; }
        var code = raw.charCodeAt(offset);
        var kind = rows[fieldAt(offset)];
        var cell = span(line, hex(code, 2), 'b ' + (kind ? kind.r : '') +
          (offset >= from && offset < to ? mark : '') + (offset === cursor ? ' cursor' : ''));
        cell.dataset.offset = offset;
        span(line, i === 7 ? '  ' : ' ', '');
        text += code >= 32 && code < 127 ? raw[offset] : '.';
      }
      span(line, ' ' + text, 'dim');
      bytes.appendChild(line);
    }
  }

  function fieldAt(offset) {
    var low = 0, high = fields.length;
    while (low < high) {
      var middle = (low + high) >> 1;
      if (rows[fields[middle]].o <= offset) low = middle + 1; else high = middle;
    }
    if (!low) return -1;
    var index = fields[low - 1];
    return offset < rows[index].o + rows[index].l ? index : -1;
  }
  function reveal(pane, line) {
    var top = line * height;
    if (top < pane.scrollTop) pane.scrollTop = top;
    else if (top + 2 * height > pane.scrollTop + pane.clientHeight) pane.scrollTop = top + 2 * height - pane.clientHeight;
  }
  function ownPath(index) {
    var path = '';
    for (var i = index; i >= 0; i = parents[i]) path = (rows[i].p || '') + path;
    return path || '/';
  }
  function tell(index) {
    var row = rows[index];
    var words = ownPath(index) + (row.p !== undefined ? '  ' + row.v : '  ' + (row.r === 'unexplained' ? 'unexplained' : row.n) + (row.v ? ' ' + row.v : '')) +
      '  \u2014 ' + row.l + (row.l === 1 ? ' byte' : ' bytes') + ' at ' + row.o + ' (0x' + row.o.toString(16) + ')';
    (row.f || []).forEach(function (f) { words += '  \u2014 ' + f.severity + ': ' + f.words; });
    status.textContent = words;
  }
  function pick(index, byteOffset) {
    picked = index;
    cursor = byteOffset === undefined ? rows[index].o : byteOffset;
    var hidden = false;
    for (var i = parents[index]; i >= 0; i = parents[i]) if (!open[i]) { open[i] = true; hidden = true; }
    if (hidden) layOut();
    reveal(tree, shown.indexOf(index));
    reveal(bytes, Math.floor(cursor / perLine));
    tree.setAttribute('aria-activedescendant', 'row' + index);
    drawTree(); drawBytes(); tell(index);
  }
  function toggle(index, on) {
    if (!children[index] || open[index] === on) return false;
    open[index] = on;
    layOut();
    return true;
  }
  function pickByte(offset) {
    offset = Math.max(0, Math.min(raw.length - 1, offset));
    var index = fieldAt(offset);
    if (index >= 0) pick(index, offset);
  }

  tree.addEventListener('scroll', drawTree);
  bytes.addEventListener('scroll', drawBytes);
  window.addEventListener('resize', function () { drawTree(); drawBytes(); });
  tree.addEventListener('click', function (event) {
    var line = event.target.closest('.row');
    if (!line) return;
    var index = Number(line.dataset.index);
    if (index === picked) toggle(index, !open[index]);
    pick(index);
  });
  bytes.addEventListener('click', function (event) {
    var cell = event.target.closest('.b');
    if (cell) pickByte(Number(cell.dataset.offset));
  });
  tree.addEventListener('keydown', function (event) {
    var at = shown.indexOf(picked), page = Math.max(1, Math.floor(tree.clientHeight / height) - 1);
    var to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: shown.length - 1, PageDown: at + page, PageUp: at - page }[event.key];
    if (to !== undefined) pick(shown[Math.max(0, Math.min(shown.length - 1, to))]);
    else if (event.key === 'ArrowRight') { if (!toggle(picked, true) && children[picked]) pick(shown[at + 1]); else pick(picked); }
    else if (event.key === 'ArrowLeft') { if (!toggle(picked, false) && parents[picked] >= 0) pick(parents[picked]); else pick(picked); }
    else if (event.key === 'Enter' || event.key === ' ') { toggle(picked, !open[picked]); pick(picked); }
    else return;
    event.preventDefault();
  });
  bytes.addEventListener('keydown', function (event) {
    var page = perLine * Math.max(1, Math.floor(bytes.clientHeight / height) - 1);
    var step = { ArrowRight: 1, ArrowLeft: -1, ArrowDown: perLine, ArrowUp: -perLine, PageDown: page, PageUp: -page }[event.key];
    if (step !== undefined) pickByte(cursor + step);
    else if (event.key === 'Home') pickByte(0);
    else if (event.key === 'End') pickByte(raw.length - 1);
    else return;
    event.preventDefault();
  });

  var bad = rows.reduce(function (n, row) { return n + (row.f || []).filter(function (f) { return f.severity === 'error'; }).length; },
    data.findings.length);
  document.getElementById('file').textContent = data.file;
  document.getElementById('about').textContent = data.size + ' bytes, ' + data.order + ', ' +
    (bad ? bad + (bad === 1 ? ' error' : ' errors') : 'no damage found');
  var spacer = document.createElement('div');
  spacer.style.height = Math.ceil(raw.length / perLine) * height + 'px';
  bytes.appendChild(spacer);
  layOut();
  drawBytes();
  if (rows.length) pick(0);
  tree.focus();
})();
</script>
</body>
</html>
)page";
} // namespace TOOL

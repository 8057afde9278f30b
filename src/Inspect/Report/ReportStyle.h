// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_REPORTSTYLE_H
#define KESTRIN_ORV_INSPECT_REPORTSTYLE_H

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// How reports look. Text has a contrast of at least 4.5 to 1 in light and in dark. The colours at
/// the end are those of toGraphviz(), which a dark page replaces.
const char kReportStyle[] = R"css(
:root { color-scheme: light dark;
  --page: #ffffff; --card: #f8fafc; --line: #d5dce6; --text: #111827; --soft: #4b5563;
  --run: #1f5fa8; --runfill: #e8f1fb; --idle: #5f6673; --idlefill: #f4f4f5;
  --off: #7f5200; --offfill: #fdf3dc; --bad: #b3261e; --badfill: #fdeaea; --good: #1b6e53;
  --share: #d6e6f7; --focus: #1f5fa8; }
@media (prefers-color-scheme: dark) { :root {
  --page: #0f141b; --card: #171e28; --line: #334053; --text: #e7ecf3; --soft: #a9b4c3;
  --run: #7db8f2; --runfill: #14283f; --idle: #a3adba; --idlefill: #20262e;
  --off: #e7b450; --offfill: #322508; --bad: #ff9086; --badfill: #3d1614; --good: #6fcba8;
  --share: #1d3a5c; --focus: #9ccbff; } }
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; scroll-behavior: smooth; }
@media (prefers-reduced-motion: reduce) { html { scroll-behavior: auto; } }
body { margin: 0; background: var(--page); color: var(--text);
  font: 16px/1.5 system-ui, "Segoe UI", Helvetica, Arial, sans-serif; }
header, main, footer { max-width: 84rem; margin: 0 auto; padding: 0 1.25rem; }
header { padding-top: 1.75rem; }
h1 { font-size: 1.9rem; line-height: 1.2; margin: 0 0 1rem; overflow-wrap: anywhere; }
h2 { font-size: 1.3rem; margin: 2.5rem 0 .75rem; scroll-margin-top: 1rem; }
h3 { font-size: 1.05rem; margin: 1.75rem 0 .5rem; }
p { margin: .5rem 0; max-width: 46rem; }
a { color: var(--run); }
nav ul { display: flex; flex-wrap: wrap; gap: .25rem 1.25rem; margin: 1rem 0 0; padding: 0;
  list-style: none; }
nav a { display: inline-block; padding: .25rem 0; }
footer { margin-top: 3rem; padding-bottom: 2rem; color: var(--soft); font-size: .85rem; }
:focus-visible { outline: 3px solid var(--focus); outline-offset: 2px; }
.facts { display: grid; grid-template-columns: repeat(auto-fit, minmax(8.5rem, 1fr)); gap: .6rem;
  margin: 0; }
.facts div { background: var(--card); border: 1px solid var(--line); border-radius: .6rem;
  padding: .6rem .9rem; display: flex; flex-direction: column-reverse; }
.facts dt { color: var(--soft); font-size: .85rem; }
.facts dd { margin: 0; font-size: 1.45rem; font-weight: 650; line-height: 1.25;
  font-variant-numeric: tabular-nums; }
.soft { color: var(--soft); }
.scroll { overflow: auto; border: 1px solid var(--line); border-radius: .6rem;
  background: var(--page); }
.zoom { display: flex; flex-wrap: wrap; align-items: center; gap: .5rem 0; }
.zoom input { position: absolute; opacity: 0; width: 1px; height: 1px; }
.zoom label { border: 1px solid var(--line); padding: .2rem .8rem; background: var(--card);
  font-size: .9rem; cursor: pointer; margin-left: -1px; }
.zoom label:first-of-type { border-radius: .5rem 0 0 .5rem; margin-left: 0; }
.zoom label:last-of-type { border-radius: 0 .5rem .5rem 0; }
.zoom input:checked + label { background: var(--run); border-color: var(--run); color: var(--page);
  font-weight: 600; }
.zoom input:focus-visible + label { outline: 3px solid var(--focus); outline-offset: 2px; }
.zoom .scroll { flex: 0 0 100%; max-height: 85vh; }
.graph { display: block; height: auto; width: var(--w); max-width: none; margin: 0 auto; }
#zoom-fit:checked ~ .scroll .graph { width: 100%; max-width: var(--w); min-width: min(var(--w), 52rem); }
#zoom-2:checked ~ .scroll .graph { width: calc(var(--w) * 2); }
.graph text:not([fill]) { fill: var(--text); }
pre { margin: 0; padding: 1rem; font: .8rem/1.4 ui-monospace, "DejaVu Sans Mono", monospace; }
pre.scroll { max-height: 30rem; }
table { border-collapse: collapse; width: 100%; font-size: .93rem; }
caption { text-align: left; color: var(--soft); font-size: .85rem; padding: .4rem .75rem; }
th, td { text-align: left; vertical-align: top; padding: .45rem .75rem;
  border-top: 1px solid var(--line); }
thead th { border-top: 0; background: var(--card); font-size: .82rem; color: var(--soft);
  white-space: nowrap; }
th[scope=row] { font-weight: 600; overflow-wrap: anywhere; min-width: 11rem; }
.n { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
td.share { background: linear-gradient(to right, var(--share) var(--part), transparent var(--part)); }
.state { display: inline-block; padding: 0 .5rem; border-radius: .5rem; border: 2px solid;
  font-size: .82rem; font-weight: 600; margin-right: .35rem; white-space: nowrap; }
.scheduled { color: var(--run); background: var(--runfill); }
.not-needed { color: var(--idle); background: var(--idlefill); border-style: dashed; }
.disabled { color: var(--off); background: var(--offfill); border-style: dotted; }
.failed { color: var(--bad); background: var(--badfill); border-style: double; border-width: 4px; }
.reason { color: var(--soft); overflow-wrap: anywhere; }
.type { overflow-wrap: anywhere; min-width: 8.5rem; }
.chart { display: block; width: 100%; overflow: visible; font-size: 12px; }
.chart text { fill: var(--text); font-variant-numeric: tabular-nums; }
.chart .quiet { fill: var(--soft); }
.chart .halo { paint-order: stroke; stroke: var(--card); stroke-width: 4px; }
.chart .grid { stroke: var(--line); stroke-width: 1; }
.chart .axis { stroke: var(--soft); stroke-width: 1; }
.chart .bar { fill: var(--run); stroke: var(--page); stroke-width: 1; }
.chart .rest { fill: var(--off); }
.chart .call { fill: var(--run); stroke: var(--run); stroke-width: .75; }
.chart .waited { stroke: var(--run); stroke-width: .75; }
.chart .bad { fill: var(--bad); }
.chart .mark { stroke: var(--good); stroke-width: 2; stroke-dasharray: 5 3; }
.chart .far { stroke: var(--off); stroke-dasharray: 2 3; }
.chart .track { fill: var(--card); }
figure { margin: 0; background: var(--card); border: 1px solid var(--line); border-radius: .6rem;
  padding: 1rem; }
.timeline .track { fill: var(--page); }
figure > :last-child { margin-bottom: 0; }
figcaption { color: var(--soft); font-size: .9rem; margin-bottom: .6rem; }
details { margin: .6rem 0; }
summary { cursor: pointer; padding: .3rem 0; color: var(--run); width: fit-content; }
.legend { display: flex; flex-wrap: wrap; gap: .35rem 1.25rem; margin: .6rem 0; padding: 0;
  list-style: none; font-size: .85rem; color: var(--soft); }
.legend svg { vertical-align: middle; margin-right: .4rem; }
@media (max-width: 46rem) {
  header, main, footer { padding-left: .9rem; padding-right: .9rem; }
  h1 { font-size: 1.5rem; }
  .facts { grid-template-columns: 1fr 1fr; }
  .zoom label { padding: .45rem .9rem; }
  figure { padding: .75rem; }
  .cards, .cards tbody, .cards td, .cards th[scope=row] { display: block; }
  .cards thead { position: absolute; clip-path: inset(50%); width: 1px; height: 1px;
    overflow: hidden; }
  .cards tr { padding: .6rem .8rem; border-top: 1px solid var(--line); }
  .cards tbody tr:first-child { border-top: 0; }
  .cards tr { display: grid; grid-template-columns: repeat(4, 1fr); gap: .1rem .5rem; }
  .cards td, .cards th[scope=row] { border: 0; padding: .1rem 0; grid-column: 1 / -1; }
  .cards th[scope=row] { grid-row: 1; grid-column: 1 / 4; }
  .cards .place { grid-row: 1; grid-column: 4; color: var(--soft); }
  .cards .type { color: var(--soft); font-size: .85rem; }
  .cards td[data-label]:not(.place) { grid-column: auto; text-align: left; margin-top: .3rem; }
  .cards td[data-label]:not(.place)::before { content: attr(data-label); display: block;
    color: var(--soft); font-size: .75rem; }
  .cards .place[data-label]::before { content: attr(data-label) "\a0"; }
  .cards td.share { background: none; }
  .cards td:empty { display: none; }
}
@media print { .scroll { overflow: visible; max-height: none; border: 0; } nav, .zoom label { display: none; } }
@media (prefers-color-scheme: dark) {
  .graph [fill="#ffffff"] { fill: #0f141b; }
  .graph [fill="#111827"] { fill: #e7ecf3; }
  .graph [fill="#4b5563"] { fill: #a9b4c3; }
  .graph [fill="#f8fafc"] { fill: #1b2430; }
  .graph [fill="#eef2f7"] { fill: #171e28; }
  .graph [fill="#e8f1fb"] { fill: #14283f; }
  .graph [fill="#f4f4f5"] { fill: #20262e; }
  .graph [fill="#fdf3dc"] { fill: #322508; }
  .graph [fill="#fdeaea"] { fill: #3d1614; }
  .graph [fill="#e6f4ee"] { fill: #10291f; }
  .graph [fill="#1f5fa8"] { fill: #7db8f2; }
  .graph [fill="#5f6673"] { fill: #a3adba; }
  .graph [fill="#7f5200"] { fill: #e7b450; }
  .graph [fill="#b3261e"] { fill: #ff9086; }
  .graph [fill="#1f2937"] { fill: #cbd5e1; }
  .graph [fill="#8f3a2b"] { fill: #f0a08f; }
  .graph [fill="#1b6e53"] { fill: #6fcba8; }
  .graph [stroke="#ffffff"] { stroke: #0f141b; }
  .graph [stroke="#1f5fa8"] { stroke: #7db8f2; }
  .graph [stroke="#5f6673"] { stroke: #a3adba; }
  .graph [stroke="#7f5200"] { stroke: #e7b450; }
  .graph [stroke="#b3261e"] { stroke: #ff9086; }
  .graph [stroke="#64748b"] { stroke: #7f8ea3; }
  .graph [stroke="#1b6e53"] { stroke: #6fcba8; }
  .graph [stroke="#1f2937"] { stroke: #cbd5e1; }
  .graph [stroke="#8f3a2b"] { stroke: #f0a08f; }
}
)css";

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif

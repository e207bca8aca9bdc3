// How pages look: on a wide screen, a telephone and paper, in light and dark.
#include "pc/report/page.h"

namespace tolvenar::pc {

const std::string_view kPageStyle = R"(
:root {
  --paper: #fbfaf7; --card: #ffffff; --ink: #23262b; --soft: #666b73; --line: #e2dfd7;
  --accent: #22577a; --accent-soft: #c9d9e3; --added: #1f7a4d; --deleted: #b3372f;
  --changed: #93660b; --good: #e7f3ec; --bad: #fbe9e7;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #16181b; --card: #1e2125; --ink: #e4e2dc; --soft: #9aa0a8; --line: #33373d;
    --accent: #7db6d6; --accent-soft: #2f4655; --added: #6fc795; --deleted: #ef8f86;
    --changed: #dcb15c; --good: #1d3226; --bad: #3d2321;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 2rem 1.25rem 3rem; max-width: 62rem; background: var(--paper);
  color: var(--ink); font: 1rem/1.5 system-ui, "Segoe UI", Roboto, "Liberation Sans", sans-serif;
}
h1 { margin: 0; font-size: 2rem; line-height: 1.2; font-weight: 650; overflow-wrap: anywhere; }
h2 { margin: 2.5rem 0 .75rem; font-size: 1.25rem; font-weight: 650; }
p { margin: .5rem 0; }
header { margin-bottom: 1.25rem; }
a { color: var(--accent); text-underline-offset: .15em; }
small, .soft { color: var(--soft); font-size: .875rem; }
bdi, td, li { overflow-wrap: anywhere; }
pre { overflow-x: auto; padding: 1rem; border: 1px solid var(--line); border-radius: .5rem; }
.verdict { margin: 1.25rem 0; padding: .6rem 1rem; border-radius: .5rem; background: var(--good); }
.verdict.bad { background: var(--bad); }
.tiles { display: grid; grid-template-columns: repeat(auto-fit, minmax(9rem, 1fr)); gap: .75rem; margin: 0; }
.tiles div, .card { background: var(--card); border: 1px solid var(--line); border-radius: .5rem; padding: .75rem 1rem; }
.tiles dt { color: var(--soft); font-size: .875rem; }
.tiles dd { margin: 0; font-size: 1.25rem; font-weight: 600; font-variant-numeric: tabular-nums; }
.chart { display: block; width: 100%; overflow: visible; }
.chart line { stroke: var(--line); stroke-width: 2; }
.chart circle { fill: var(--accent); stroke: var(--card); stroke-width: 2; }
.chart a:hover circle, .chart a:focus circle { fill: var(--changed); }
.chart .before { fill: var(--accent-soft); }
.chart .new { fill: var(--accent); }
.ends { display: flex; justify-content: space-between; gap: 1rem; }
.key::before { content: ""; display: inline-block; width: .75em; height: .75em; margin-right: .4em; border-radius: .15em; background: var(--accent); }
.key.before::before { background: var(--accent-soft); }
table { width: 100%; border-collapse: collapse; font-variant-numeric: tabular-nums; }
th { text-align: left; color: var(--soft); font-size: .875rem; font-weight: 500; }
th, td { padding: .4rem .75rem .4rem 0; border-bottom: 1px solid var(--line); vertical-align: top; }
th:last-child, td:last-child { padding-right: 0; }
.number { text-align: right; white-space: nowrap; }
td.number { overflow-wrap: normal; }
.time { white-space: nowrap; }
ul { margin: 0; padding-left: 1.1rem; }
.tree { padding-left: 0; font-size: .9375rem; }
.tree ul { border-left: 1px solid var(--line); margin-left: .3rem; padding-left: .9rem; }
.tree li { list-style: none; padding-left: 1rem; }
.tree li:has(> details) { padding-left: 0; }
summary { cursor: pointer; }
summary:focus-visible, a:focus-visible { outline: 2px solid var(--accent); outline-offset: 2px; }
details.card { margin-bottom: .75rem; }
details.card > summary { font-weight: 600; }
details.card > ul { margin-top: .5rem; }
.a { color: var(--added); } .d { color: var(--deleted); } .c { color: var(--changed); }
.count { font-size: .8125rem; font-weight: 400; margin-left: .4em; font-variant-numeric: tabular-nums; white-space: nowrap; }
.get { font-size: .8125rem; margin-left: .6em; white-space: nowrap; }
form { display: flex; flex-wrap: wrap; gap: .75rem; align-items: end; }
label { color: var(--soft); font-size: .875rem; }
select, button { display: block; font: inherit; color: var(--ink); background: var(--card); border: 1px solid var(--line); border-radius: .4rem; padding: .4rem .7rem; max-width: 100%; }
button { background: var(--accent); border-color: var(--accent); color: var(--paper); }
footer { margin-top: 3rem; padding-top: 1rem; border-top: 1px solid var(--line); }
@media (max-width: 40rem) {
  body { padding: 1.25rem 1rem 2rem; }
  h1 { font-size: 1.6rem; }
  table.cards, .cards tbody, .cards tr, .cards td { display: block; }
  .cards thead { display: none; }
  .cards tr { padding: .6rem 0; border-bottom: 1px solid var(--line); }
  .cards td { border: 0; padding: .1rem 0; text-align: left; white-space: normal; }
  .cards td[data-name]::before { content: attr(data-name); display: inline-block; min-width: 6.5rem; color: var(--soft); font-size: .875rem; }
  .tree ul { padding-left: .5rem; }
}
@media print {
  :root {
    --paper: #fff; --card: #fff; --ink: #000; --soft: #444; --line: #bbb; --good: #fff; --bad: #fff;
    --accent: #22577a; --accent-soft: #c9d9e3; --added: #1f7a4d; --deleted: #b3372f; --changed: #93660b;
  }
  body { max-width: none; padding: 0; font-size: 10pt; }
  .verdict { border: 1px solid var(--line); }
  .chart .before, .chart .new, .chart circle { print-color-adjust: exact; }
  h2 { break-after: avoid; }
  tr, .tiles div { break-inside: avoid; }
  form, .get { display: none; }
}
)";

}  // namespace tolvenar::pc

// The style of the fleet's page: one column, plots in a grid, for phones and desktops, light and dark.
#pragma once

namespace vantor::fleet {

inline constexpr char kReportPageStyle[] = R"(
:root { color-scheme: light dark; --back: #f3f4f6; --card: #fff; --ink: #1b1f24; --soft: #57606a; --line: #d0d7de;
  --bar: #5b8dd6; --alarm: #c62f3d; --mark: #fde8e8; --after: #b35c00; }
@media (prefers-color-scheme: dark) {
  :root { --back: #0f1318; --card: #181d24; --ink: #e6e9ed; --soft: #9aa5b1; --line: #323a44;
    --bar: #5b8dd6; --alarm: #ff7b84; --mark: #46191d; --after: #f0a04b; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1rem; max-width: 70rem; background: var(--back); color: var(--ink);
  font: 16px/1.5 system-ui, sans-serif; }
h1 { margin: 0; font-size: 1.4rem; }
h2 { margin: 1.4rem 0 .5rem; font-size: 1.1rem; }
h3 { margin: 0 0 .3rem; font-size: .9rem; font-weight: 600; }
p { margin: .3rem 0; }
.soft { color: var(--soft); font-size: .9rem; }
.card { padding: .7rem 1rem; background: var(--card); border: 1px solid var(--line); border-radius: .6rem;
  overflow-x: auto; }
.grid { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(20rem, 100%), 1fr)); gap: .8rem; }
.out { border-left: .3rem solid var(--alarm); background: var(--mark); }
.verdicts p { padding: .3rem .6rem; }
svg { display: block; width: 100%; }
svg text { fill: var(--soft); font-size: 11px; }
svg .grid { stroke: var(--line); }
.bar { fill: var(--bar); }
.marked { fill: var(--alarm); }
.interval { stroke: var(--ink); stroke-width: 1.5; opacity: .6; }
.change { stroke: var(--soft); stroke-width: 1.5; }
.before { fill: var(--bar); }
.after { fill: var(--after); }
.line { fill: none; stroke: var(--bar); stroke-width: 1.5; }
.small { width: 10rem; height: 1.5rem; }
.key { font-weight: 700; }
.key.old { color: var(--bar); }
.key.new { color: var(--after); }
table { width: 100%; border-collapse: collapse; font-size: .9rem; }
th, td { padding: .2rem .5rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th { font-weight: 500; color: var(--soft); }
td.number, th.number { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
tr.out td { color: var(--alarm); font-weight: 600; }
summary { cursor: pointer; margin: .4rem 0; }
code { font-size: .8rem; overflow-wrap: anywhere; }
)";

} // namespace vantor::fleet

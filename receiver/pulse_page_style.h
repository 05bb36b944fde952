// The style of the page of pulses: one column of cards, for phones and desktops, light and dark.
#pragma once

namespace vantor::receiver {

inline constexpr char kPageStyle[] = R"(
:root { color-scheme: light dark; --back: #f3f4f6; --card: #fff; --ink: #1b1f24; --soft: #57606a; --line: #d0d7de;
  --chip: #e7ecf2; --mark: #fff1c2; --markink: #6a4700; --accent: #0a58ca; }
@media (prefers-color-scheme: dark) {
  :root { --back: #0f1318; --card: #181d24; --ink: #e6e9ed; --soft: #9aa5b1; --line: #323a44;
    --chip: #28303a; --mark: #4a3a0c; --markink: #ffdf8a; --accent: #7db4ff; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1rem; max-width: 60rem; background: var(--back); color: var(--ink);
  font: 16px/1.5 system-ui, sans-serif; }
h1 { margin: 0; font-size: 1.4rem; }
h2 { margin: 0; font-size: 1.05rem; }
p { margin: .3rem 0; }
form { display: flex; flex-wrap: wrap; gap: .6rem; align-items: end; margin: .8rem 0 1rem; }
label { display: grid; font-size: .85rem; color: var(--soft); min-width: 0; }
select, input { max-width: 100%; }
input { width: 19rem; }
:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; }
select, input, button { font: inherit; height: 2.4rem; padding: .3rem .6rem; border: 1px solid var(--line); border-radius: .4rem;
  background: var(--card); color: var(--ink); }
button { background: var(--accent); border-color: var(--accent); color: var(--card); font-weight: 600; }
a { color: var(--accent); }
form a { padding: .5rem .3rem; }
article { margin: 0 0 1rem; padding: .8rem 1rem; background: var(--card); border: 1px solid var(--line);
  border-radius: .6rem; overflow-wrap: anywhere; }
.soft, .was { color: var(--soft); font-size: .9rem; }
ul { display: flex; flex-wrap: wrap; gap: .35rem; margin: .6rem 0; padding: 0; list-style: none; }
li { padding: .1rem .55rem; border-radius: 1rem; background: var(--chip); font-size: .85rem; }
.changed { background: var(--mark); color: var(--markink); }
.changed .was { color: inherit; }
table { width: 100%; border-collapse: collapse; font-size: .9rem; }
th, td { padding: .25rem .5rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
th { font-weight: 500; white-space: nowrap; }
thead th { color: var(--soft); }
summary { cursor: pointer; color: var(--accent); }
h3 { margin: .6rem 0 .2rem; font-size: .9rem; color: var(--soft); font-weight: 500; }
@media (max-width: 36rem) { body { padding: .6rem; } article { padding: .7rem; } thead { display: none; }
  tr { display: grid; grid-template-columns: 1fr auto; border-bottom: 1px solid var(--line); }
  th, td { border: 0; } td:nth-child(3) { grid-column: 1 / 3; padding-top: 0; color: var(--soft); } }
)";

} // namespace vantor::receiver

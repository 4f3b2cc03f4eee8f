"use strict";
// Draws the entries of one folder as tiles whose areas are their sizes, and goes into a folder at a click.
{
  const data = JSON.parse(document.getElementById("entries").textContent);
  const children = data.parent.map(() => []);
  data.parent.forEach((parent, entry) => { if (parent >= 0) children[parent].push(entry); });
  const map = document.getElementById("map");
  const way = document.getElementById("way");
  const about = document.getElementById("about");
  let shown = 0;

  const size = bytes => {
    const units = ["B", "KiB", "MiB", "GiB", "TiB", "PiB"];
    let unit = 0;
    for (; bytes >= 1024 && unit + 1 < units.length; ++unit) bytes /= 1024;
    return `${unit ? (Math.floor(bytes * 10) / 10).toFixed(1) : bytes} ${units[unit]}`;
  };
  const nameOf = entry => data.name[entry] || (entry ? "everything smaller" : "top");
  const describe = entry =>
    `${nameOf(entry)}: ${size(data.bytes[entry])}` +
    (data.files[entry] ? `, ${data.files[entry].toLocaleString("en")} files` : "");

  // Squarified: a row takes entries as long as that makes its worst tile more like a square.
  const layOut = (entries, left, top, width, height) => {
    const tiles = [];
    const total = entries.reduce((sum, entry) => sum + data.bytes[entry], 0);
    const scale = width * height / total;
    const worst = (row, area, side) => {
      const areas = row.map(entry => data.bytes[entry] * scale);
      return Math.max(side * side * Math.max(...areas) / (area * area), area * area / (side * side * Math.min(...areas)));
    };
    for (let next = 0; next < entries.length;) {
      const side = Math.min(width, height);
      let row = [entries[next++]];
      let area = data.bytes[row[0]] * scale;
      while (next < entries.length) {
        const more = data.bytes[entries[next]] * scale;
        if (worst([...row, entries[next]], area + more, side) > worst(row, area, side)) break;
        row.push(entries[next++]);
        area += more;
      }
      const depth = area / side;
      let along = 0;
      for (const entry of row) {
        const length = data.bytes[entry] * scale / depth;
        tiles.push(width >= height ? { entry, x: left, y: top + along, width: depth, height: length }
                                   : { entry, x: left + along, y: top, width: length, height: depth });
        along += length;
      }
      if (width >= height) { left += depth; width -= depth; } else { top += depth; height -= depth; }
    }
    return tiles;
  };

  const show = entry => {
    shown = entry;
    map.replaceChildren();
    const entries = children[entry].filter(child => data.bytes[child] > 0)
      .sort((left, right) => data.bytes[right] - data.bytes[left]);
    layOut(entries, 0, 0, map.clientWidth, map.clientHeight).forEach((tile, place) => {
      if (tile.width < 1 || tile.height < 1) return;
      const button = document.createElement("button");
      button.type = "button";
      button.title = describe(tile.entry);
      button.setAttribute("aria-label", button.title);
      button.dataset.entry = tile.entry;
      Object.assign(button.style, { left: `${tile.x}px`, top: `${tile.y}px`, width: `${tile.width}px`,
        height: `${tile.height}px`, background: `var(--tile${place % 6})` });
      if (tile.width > 40 && tile.height > 18) {
        const label = document.createElement("span");
        label.textContent = `${nameOf(tile.entry)} ${size(data.bytes[tile.entry])}`;
        button.append(label);
      }
      if (children[tile.entry].length) {
        button.classList.add("folder");
        button.addEventListener("click", () => { show(tile.entry); way.querySelector("button:last-of-type")?.focus(); });
      } else {
        button.addEventListener("click", () => { about.textContent = button.title; });
      }
      map.append(button);
    });
    way.replaceChildren();
    for (let step = entry; step >= 0; step = data.parent[step]) {
      const part = document.createElement(step === entry ? "b" : "button");
      part.textContent = nameOf(step);
      if (step !== entry) part.addEventListener("click", () => show(step));
      way.prepend(...(step ? [" / ", part] : [part]));
    }
    about.textContent = describe(entry);
  };

  let later;
  addEventListener("resize", () => { clearTimeout(later); later = setTimeout(() => show(shown), 100); });
  document.getElementById("walk").hidden = false;
  show(0);
}

'use strict';
(() => {
  const byId = (id) => document.getElementById(id);
  const clips = byId('clips');
  const cards = [...clips.querySelectorAll('section.card')];
  const tables = [...clips.querySelectorAll('table.clips')].map((table) => ({
    table,
    block: table.closest('.layout'),
    layout: table.dataset.layout,
    groups: [...table.tBodies].map((body, order) => ({
      body,
      order,
      count: body.querySelectorAll('tr.clip').length,
      flagged: body.classList.contains('flagged'),
      text: null,
    })),
  }));
  const total = tables.reduce((sum, each) => sum + each.groups.reduce((n, g) => n + g.count, 0), 0);

  // ---- sorting: whole recordings, by their first clip; what is not known stays at the end

  const collator = new Intl.Collator('en', { numeric: true, sensitivity: 'base' });

  const valueOf = (group, column, isNumber) => {
    const row = group.body.querySelector('tr.clip');
    const cell = row && row.cells[column];
    if (!cell) return null;
    const text = cell.dataset.v ?? cell.textContent.trim();
    if (text === '' || text === '–') return null;
    return isNumber ? Number(text) : text;
  };

  const sort = (entry, header) => {
    const column = header.cellIndex;
    const isNumber = header.dataset.sort === 'number';
    const direction = header.getAttribute('aria-sort') === 'ascending' ? 'descending' : 'ascending';
    const sign = direction === 'ascending' ? 1 : -1;
    const keys = new Map(entry.groups.map((g) => [g, valueOf(g, column, isNumber)]));
    const compare = isNumber ? (a, b) => a - b : collator.compare;
    const ordered = [...entry.groups].sort((a, b) => {
      const x = keys.get(a);
      const y = keys.get(b);
      if (x === null || y === null) return (x === null) - (y === null) || a.order - b.order;
      return sign * compare(x, y) || a.order - b.order;
    });
    for (const other of header.parentNode.cells) {
      if (other.dataset.sort) other.setAttribute('aria-sort', other === header ? direction : 'none');
    }
    entry.table.append(...ordered.map((g) => g.body));
  };

  for (const entry of tables) {
    for (const header of entry.table.tHead.rows[0].cells) {
      if (!header.dataset.sort) continue;
      const button = document.createElement('button');
      button.type = 'button';
      button.append(...header.childNodes);
      header.append(button);
      header.setAttribute('aria-sort', header.dataset.first === undefined ? 'none' : 'ascending');
    }
  }

  clips.addEventListener('click', (event) => {
    const button = event.target.closest('thead button');
    if (!button) return;
    const table = button.closest('table');
    sort(tables.find((each) => each.table === table), button.parentNode);
  });

  // ---- filtering

  const find = byId('find');
  const layout = byId('layout');
  const flagged = byId('flagged');
  const shown = byId('shown');
  const counted = (count) => count.toLocaleString('en') + (count === 1 ? ' clip' : ' clips');

  const matches = (group, words) => {
    if (words.length === 0) return true;
    group.text ??= group.body.textContent.toLowerCase();
    return words.every((word) => group.text.includes(word));
  };

  const hide = (element, isHidden) => {
    if (element.hidden !== isHidden) element.hidden = isHidden;
  };

  const filter = () => {
    const words = find.value.toLowerCase().split(/\s+/).filter((word) => word !== '');
    const isFiltering = words.length > 0 || layout.value !== '' || flagged.checked;
    let visible = 0;
    for (const { block, layout: title, groups } of tables) {
      const isWanted = layout.value === '' || layout.value === title;
      let inTable = 0;
      for (const group of groups) {
        const isShown = isWanted && (!flagged.checked || group.flagged) && matches(group, words);
        hide(group.body, !isShown);
        if (isShown) inTable += group.count;
      }
      hide(block, isFiltering && inTable === 0);
      visible += inTable;
    }
    for (const card of cards) {
      hide(card, isFiltering && !card.querySelector('.layout:not([hidden])'));
    }
    shown.textContent = isFiltering
      ? visible.toLocaleString('en') + ' of ' + counted(total) + ' shown'
      : counted(total);
  };

  let isDue = false;
  const filterSoon = () => {
    if (isDue) return;
    isDue = true;
    requestAnimationFrame(() => {
      isDue = false;
      filter();
    });
  };

  for (const title of [...new Set(tables.map((each) => each.layout))].sort(collator.compare)) {
    layout.append(new Option(title, title));
  }
  byId('controls').addEventListener('input', filterSoon);
  byId('controls').hidden = false;
  filter();

  // ---- printing: what is folded is opened on paper

  let folded = [];
  addEventListener('beforeprint', () => {
    folded = [...document.querySelectorAll('details:not([open])')];
    for (const each of folded) each.open = true;
  });
  addEventListener('afterprint', () => {
    for (const each of folded) each.open = false;
  });
})();

// What several views are made of.

// The toolbar of a view: a field to search in, and what else the view puts there.
function searchField(label, typed) {
  const field = make('input', {
    type: 'search', autocomplete: 'off', spellcheck: 'false', oninput: () => typed(field.value),
  });
  return { field, node: make('label', { class: 'field search' }, make('span', null, label), field) };
}

// A list to choose from. `choices` are pairs of a value and a text; the chosen value is handed to `chosen`.
class Choice {
  constructor(label, choices, chosen) {
    this.values = [];
    this.select = make('select', { onchange: () => chosen(this.values[this.select.selectedIndex]) });
    this.node = make('label', { class: 'field' }, make('span', null, label), this.select);
    this.add(choices);
  }

  add(choices) {
    this.values.push(...choices.map(([value]) => value));
    this.select.append(...choices.map(([, text]) => make('option', null, text)));
  }

  // Shows the value as chosen. One that the list does not know leaves nothing chosen.
  choose(value) {
    this.select.selectedIndex = this.values.indexOf(value);
    this.node.classList.toggle('set', this.select.selectedIndex > 0);
  }
}

// Says how many songs there are, how long they play and how much room they take; spoken when it changes.
class Status {
  constructor() {
    this.node = make('p', { class: 'status', role: 'status' });
  }

  say(...parts) {
    const text = parts.filter((part) => part !== '').join(' \u00b7 ');
    if (this.node.textContent !== text) this.node.textContent = text;
  }
}

const firstChunk = 120;

// Fills `list` with `count` elements, in pieces: as many as one sees at first, more whenever the end comes near.
class Growing {
  constructor(list, count, makeElement) {
    Object.assign(this, { list, count, makeElement, made: 0 });
    this.watcher = new IntersectionObserver((seen) => {
      if (seen.some((entry) => entry.isIntersecting)) this.grow(firstChunk);
    }, { root: document.getElementById('main'), rootMargin: '1500px' });
    this.grow(firstChunk);
  }

  grow(more) {
    const last = Math.min(this.count, this.made + more);
    const nodes = [];
    for (let at = this.made; at < last; at++) nodes.push(this.makeElement(at));
    this.list.append(...nodes);
    this.made = last;
    if (this.made === this.count) {
      this.stop();
      return;
    }
    // Where the last element comes into view, so will the end of the list.
    this.watcher.disconnect();
    this.watcher.observe(this.list.lastElementChild);
  }

  // No more of them come.
  stop() {
    this.watcher.disconnect();
  }

  print(on) {
    if (on) this.grow(mostPrinted);
  }
}

// The picture of an album, or one drawn from its name: initials on a colour that is always the same for it.
function coverOf(album) {
  const { name, artist, cover } = library.albums[album];
  const data = cover === null ? '' : library.covers[cover];
  if (/^data:image\/(jpeg|png);base64,/.test(data)) {
    return make('img', { class: 'cover', src: data, alt: '', loading: 'lazy', decoding: 'async' });
  }
  const initials = (name || artist || '?').split(/[^\p{L}\p{N}]+/u).filter((word) => word !== '')
    .slice(0, 2).map((word) => [...word][0].toUpperCase()).join('');
  let hue = 7;
  for (const c of `${artist}\n${name}`) hue = (hue * 31 + c.codePointAt(0)) % 360;
  return make('div', { class: 'cover drawn', 'aria-hidden': 'true', '--hue': hue }, initials || '\u266a');
}

// "12 songs, 48 min", with a dot between them.
function sumText(list) {
  return `${countOf(list.filter((song) => song >= 0).length, 'song')} \u00b7 ${durationText(sumOf('duration', list))}`;
}

// A link whose text is the library's.
function link(hash, text, settings) {
  return make('a', { href: hash, ...settings }, isolated(text));
}

// The player, and what a check of it found.

function section(title, ...children) {
  return make('section', null, make('h3', null, title), ...children);
}

// A list in pieces; nothing when it would be empty.
function growingList(title, items, makeItem, growing) {
  if (items.length === 0) return null;
  const list = make('ul', { class: 'plain' });
  growing.push(new Growing(list, items.length, (at) => make('li', null, makeItem(items[at]))));
  return section(`${title} (${countText(items.length)})`, list);
}

function songLink(song) {
  return link(linkTo('songs', { song }), songName(song));
}

class HealthView {
  constructor(main) {
    const { checked, findings, remarks, missing, damaged, duplicates } = library.health;
    this.growing = [];
    const lists = [
      growingList('Findings', findings, isolated, this.growing),
      growingList('Remarks', remarks, isolated, this.growing),
      growingList('Songs whose file is missing', missing, songLink, this.growing),
      growingList('Songs whose file is damaged', damaged,
        ([song, text]) => make('span', null, songLink(song), ': ', isolated(text)), this.growing),
      growingList('Songs that are there more than once', duplicates,
        (group) => make('ul', null, ...group.map((song) => make('li', null, songLink(song)))), this.growing),
    ].filter((list) => list !== null);
    const none = checked ? 'The check found nothing to report.' : 'The player was not checked.';
    main.append(make('h2', { class: 'hidden' }, 'Player'),
      section('Player', make('dl', { class: 'facts' }, ...library.facts.flatMap(([label, text]) => [
        make('dt', null, label), make('dd', null, isolated(text))]))),
      ...(lists.length > 0 && checked ? [] : [section('Health', make('p', null, none))]), ...lists);
    main.classList.add('page');
  }

  update() {}

  print(on) {
    for (const one of this.growing) one.print(on);
  }
}

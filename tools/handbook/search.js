// The search of the handbook. It reads its index as a script, so that it works on a site that is
// opened as a file. A section is found that has all words of the query; words in its title count
// more, and so does the exact text.

(function () {
  "use strict";

  const kMostShown = 40;
  const kExcerpt = 160;

  function escaped(text) {
    const element = document.createElement("span");
    element.textContent = text;
    return element.innerHTML;
  }

  function scoreOf(section, query, words) {
    const title = section.title.toLowerCase();
    const text = section.text.toLowerCase();
    let score = title.includes(query) ? 20 : text.includes(query) ? 5 : 0;
    for (const word of words) {
      if (title.includes(word)) score += 10;
      else if (text.includes(word)) score += 1;
      else return 0;
    }
    return score;
  }

  function excerptOf(section, words) {
    const text = section.text;
    const at = Math.max(0, text.toLowerCase().indexOf(words[0]) - 40);
    return (at > 0 ? "… " : "") + text.slice(at, at + kExcerpt) + (text.length > at + kExcerpt ? " …" : "");
  }

  function show(query, output) {
    const wanted = query.trim().toLowerCase();
    const words = wanted.split(/\s+/).filter(Boolean);
    const found = words.length === 0 ? [] : window.handbookIndex
      .map((section) => ({ section, score: scoreOf(section, wanted, words) }))
      .filter((each) => each.score > 0)
      .sort((a, b) => b.score - a.score)
      .slice(0, kMostShown);
    output.innerHTML = found.map(({ section }) =>
      `<article><h3><a href="${escaped(section.location)}">${escaped(section.title)}</a></h3>` +
      `<p>${escaped(excerptOf(section, words))}</p></article>`).join("") ||
      `<p>${escaped(words.length === 0 ? "Nothing to look for." : "No section has all of these words.")}</p>`;
  }

  function start() {
    const output = document.getElementById("mkdocs-search-results");
    const input = document.getElementById("mkdocs-search-query");
    if (!output || !input) return;
    input.value = new URLSearchParams(window.location.search).get("q") || "";
    input.addEventListener("input", () => show(input.value, output));
    show(input.value, output);
  }

  const index = document.createElement("script");
  index.src = base_url + "/search/index.js";
  index.onload = start;
  document.head.appendChild(index);
})();

// The search box: every word typed has to stand in an entry; names come before fields.
// An entry is [name, what it is, where it stands, further words]; searchIndex has those of the
// reference, siteIndex those of the guides and the library.
const root = document.body.dataset.root;
const input = document.querySelector(".search input");
const found = document.querySelector(".search ol");
const entries = siteIndex.concat(
    searchIndex.map(([name, kind, href, words]) => [name, kind, "reference/" + href, words]));

function rankOf(entry, words) {
    const name = entry[0].toLowerCase();
    const all = (entry[0] + " " + entry[1] + " " + entry[3]).toLowerCase();
    if (!words.every((word) => all.includes(word))) return -1;
    if (name === words[0]) return 3;
    return name.startsWith(words[0]) ? 2 : name.includes(words[0]) ? 1 : 0;
}

function itemOf([name, kind, href]) {
    const item = document.createElement("li");
    const link = item.appendChild(document.createElement("a"));
    const note = document.createElement("span");
    note.textContent = kind;
    link.href = root + href;
    link.append(name, note);
    return item;
}

function nothingFound() {
    const item = document.createElement("li");
    item.className = "nothing";
    item.textContent = "Nothing has all these words.";
    return item;
}

function show() {
    const words = input.value.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0) {
        found.replaceChildren();
        return;
    }
    const ranked = entries
        .map((entry) => [rankOf(entry, words), entry])
        .filter(([rank]) => rank >= 0)
        .sort((a, b) => b[0] - a[0] || a[1][0].length - b[1][0].length)
        .slice(0, 40).map(([, entry]) => itemOf(entry));
    found.replaceChildren(...(ranked.length > 0 ? ranked : [nothingFound()]));
}

input.addEventListener("input", show);
input.addEventListener("keydown", (event) => {
    const first = found.querySelector("a");
    if (event.key === "Enter" && first) first.click();
    if (event.key === "Escape") { input.value = ""; show(); }
});
found.addEventListener("click", (event) => {
    if (event.target.closest("a")) found.replaceChildren();
});

// The search box: every word typed has to stand in an entry; names come before fields.
// searchIndex has [name, what it is, where it stands, further words] per entry.
const input = document.querySelector(".search input");
const found = document.querySelector(".search ol");

function rankOf(entry, words) {
    const name = entry[0].toLowerCase();
    const all = (entry[0] + " " + entry[1] + " " + entry[3]).toLowerCase();
    if (!words.every((word) => all.includes(word))) return -1;
    if (name === words[0]) return 3;
    return name.startsWith(words[0]) ? 2 : name.includes(words[0]) ? 1 : 0;
}

function show() {
    const words = input.value.toLowerCase().split(/\s+/).filter(Boolean);
    const ranked = words.length === 0 ? [] : searchIndex
        .map((entry) => [rankOf(entry, words), entry])
        .filter(([rank]) => rank >= 0)
        .sort((a, b) => b[0] - a[0] || a[1][0].length - b[1][0].length);
    found.replaceChildren(...ranked.slice(0, 40).map(([, [name, kind, href]]) => {
        const item = document.createElement("li");
        const link = item.appendChild(document.createElement("a"));
        const note = document.createElement("span");
        note.textContent = kind;
        link.href = href;
        link.append(name, note);
        return item;
    }));
}

input.addEventListener("input", show);
input.addEventListener("keydown", (event) => {
    const first = found.querySelector("a");
    if (event.key === "Enter" && first) first.click();
    if (event.key === "Escape") { input.value = ""; show(); }
});
found.addEventListener("click", () => { found.replaceChildren(); });

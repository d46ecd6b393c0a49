"use strict";
// Looks through the words of the index, then the text of the pages; all words have to occur. "/"
// leads into the field, the arrow keys go through what is found, Enter opens it, Esc ends it.
(function () {
    const field = document.getElementById("search");
    const list = document.getElementById("matches");
    const nothing = document.getElementById("nothing");
    const contents = document.getElementById("contents");
    let chosen = -1;

    function find(words) {
        const holds = (text) => words.every((word) => text.toLowerCase().includes(word));
        const begins = (entry) => entry[0].toLowerCase().startsWith(words[0]);
        const terms = searchData.index.filter((entry) => holds(entry[0]));
        const isTitle = (entry) => entry[0] === entry[1];
        const found = terms.filter((entry) => begins(entry) && isTitle(entry))
            .concat(terms.filter((entry) => begins(entry) && !isTitle(entry)))
            .concat(terms.filter((entry) => !begins(entry)))
            .map(([term, title, page]) => [term === title ? term : term + " – " + title, page]);
        for (const [title, page, text] of searchData.pages) {
            if (holds(title + " " + text) && !found.some((match) => match[1] === page)) {
                found.push([title, page]);
            }
        }
        return found;
    }

    function show() {
        const words = field.value.trim().toLowerCase().split(/\s+/).filter(Boolean);
        const found = words.length > 0 ? find(words) : [];
        chosen = -1;
        list.replaceChildren(...found.map(([title, page]) => {
            const item = document.createElement("li");
            const link = item.appendChild(document.createElement("a"));
            link.href = page;
            link.textContent = title;
            return item;
        }));
        list.hidden = found.length === 0;
        nothing.hidden = words.length === 0 || found.length > 0;
        contents.hidden = words.length > 0;
    }

    function choose(step) {
        const items = list.children;
        if (items.length === 0) return;
        if (chosen >= 0) items[chosen].classList.remove("chosen");
        chosen = Math.min(Math.max(chosen + step, 0), items.length - 1);
        items[chosen].classList.add("chosen");
        items[chosen].scrollIntoView({ block: "nearest" });
    }

    field.addEventListener("input", show);
    field.addEventListener("keydown", (event) => {
        if (event.key === "ArrowDown" || event.key === "ArrowUp") {
            choose(event.key === "ArrowDown" ? 1 : -1);
            event.preventDefault();
        } else if (event.key === "Enter" && list.children.length > 0) {
            list.children[Math.max(chosen, 0)].firstChild.click();
        } else if (event.key === "Escape") {
            field.value = "";
            show();
        }
    });
    document.addEventListener("keydown", (event) => {
        if (event.key !== "/" || event.target === field) return;
        event.preventDefault();
        field.focus();
    });
})();

// What sets answer. A set is a model, a board and a country; it has pieces that other sets share:
//
//   customers   path, id, system (a file), systemText, file and line of the naming line, highest, menu
//   models      index, customer, path (a file), pathText, file and line of the naming line
//   boards      name, path, pathText
//   names       section and key in turns
//   items       pieces: name, value, file and line of each item, by columns; file -2: line is a number of
//   placesByCountry  file and line in turns, by country
//   features    pieces: [method, value, file, line]
//   delays      pieces: [receiver, name, value, [role, value, file, line in turns]]
//   lists       pieces: text, file and line in turns
//   channels    pieces: [channel, kHz, Hz, label, modulation, file, line]
//   plans       pieces: [kind, channels, file, line]
//   pieces      which pieces go together, by columns; sets  which of these a set has, by columns
//
// Columns are differences; -1 stands for nothing.

const LAYERS = ["model", "board", "country"];

function columns(object) {
    return Object.fromEntries(Object.entries(object).map(([name, list]) => [name, summed(list)]));
}

Data.prototype.readAnswers = function () {
    Object.assign(this, {customers: this.answers.customers, models: this.answers.models,
                         boards: this.answers.boards, countries: this.answers.countries, names: this.answers.names});
    this.itemPieces = new Map();
    this.pieces = columns(this.answers.pieces);
    this.sets = columns(this.answers.sets);
    this.setIds = new Map();
    for (let id = 0; id < this.sets.model.length; ++id) {
        this.setIds.set(this.setKey(this.sets.model[id], this.sets.board[id], this.sets.country[id]), id);
    }
    this.nameIds = new Map();
    for (let name = 0; name < this.nameCount(); ++name) {
        this.nameIds.set(this.nameOf(name), name);
    }
};

Object.assign(Data.prototype, {
    setKey(model, board, country) {
        return `${model},${board},${country}`;
    },

    // The number of a set; undefined if the line has none.
    setOf(choice) {
        return this.setIds.get(this.setKey(choice.model, choice.board, choice.country));
    },

    nameCount() {
        return this.names.length / 2;
    },
    sectionOf(name) {
        return this.text(this.names[2 * name]);
    },
    keyOf(name) {
        return this.text(this.names[2 * name + 1]);
    },
    nameOf(name) {
        return `${this.sectionOf(name)} ${this.keyOf(name)}`;
    },

    // A piece of items, unpacked when it is first asked for.
    itemPiece(id) {
        let piece = this.itemPieces.get(id);
        if (!piece) {
            piece = id < 0 ? {name: [], value: [], file: [], line: []} : columns(this.answers.items[id]);
            this.itemPieces.set(id, piece);
        }
        return piece;
    },

    // The value of each name in a set, by name; -1 where it has none.
    valuesOf(set) {
        const values = new Int32Array(this.nameCount()).fill(-1);
        for (const layer of LAYERS) {
            const piece = this.itemPiece(this.pieces[layer][this.sets.pieces[set]]);
            for (let i = 0; i < piece.name.length; ++i) {
                values[piece.name[i]] = piece.value[i];
            }
        }
        return values;
    },

    // Everything that gives an item its value, the one that counts last.
    historyOf(set, name) {
        const history = [];
        for (const layer of LAYERS) {
            const piece = this.itemPiece(this.pieces[layer][this.sets.pieces[set]]);
            const at = piece.name.indexOf(name);
            if (at >= 0) {
                const [file, line] = this.placeOf(piece, at, this.sets.country[set]);
                for (const lost of this.lostLines(file, line)) {
                    history.push({layer, ...lost});
                }
                history.push({layer, value: piece.value[at], file, line});
            }
        }
        return history;
    },

    // File and line of an item of a piece. A country's record may have a line of its own for it.
    placeOf(piece, at, country) {
        if (piece.file[at] !== -2) {
            return [piece.file[at], piece.line[at]];
        }
        const places = this.answers.placesByCountry[piece.line[at]];
        return country < 0 ? [-1, 0] : [places[2 * country], places[2 * country + 1]];
    },

    // Lines of the same file that give the same item, and that a later line replaces.
    lostLines(file, line) {
        const lost = (this.files[file] && this.files[file].lost) || [];
        const found = [];
        for (let i = 0; i < lost.length; i += 3) {
            if (lost[i + 2] === line) {
                found.push({file, line: lost[i], value: lost[i + 1]});
            }
        }
        return found;
    },

    valueOf(set, section, key) {
        const name = this.nameIds.get(`${section} ${key}`);
        const history = name === undefined ? [] : this.historyOf(set, name);
        return history.length ? history[history.length - 1].value : 0;
    },

    pieceOf(set, kind) {
        return this.pieces[kind][this.sets.pieces[set]];
    },
    listOf(set, kind) {
        const piece = this.pieceOf(set, kind);
        const list = piece < 0 ? [] : this.answers.lists[piece];
        const entries = [];
        for (let i = 0; i < list.length; i += 3) {
            entries.push({text: this.text(list[i]), file: list[i + 1], line: list[i + 2]});
        }
        return entries;
    },
    featuresOf(set, kind = "features") {
        const piece = this.pieceOf(set, kind);
        return piece < 0 ? [] : this.answers.features[piece].map(([method, value, file, line]) =>
            ({method: this.text(method), value: this.text(value), file, line}));
    },
    plansOf(set) {
        const piece = this.sets.plans[set];
        return piece < 0 ? [] : this.answers.plans[piece].map(([kind, channels, file, line]) =>
            ({kind: this.text(kind), piece: channels, file, line, channels: this.answers.channels[channels]}))
            .sort((a, b) => this.kinds.indexOf(a.kind) - this.kinds.indexOf(b.kind));
    },

    // Models are told apart by their index, and by their customer if there are several.
    modelWord(model) {
        if (model < 0) {
            return "none";
        }
        const {index, customer} = this.models[model];
        return customer ? `${index}@${customer}` : String(index);
    },
    modelNamed(word) {
        return this.models.findIndex((_, model) => this.modelWord(model) === word);
    },
    modelName(model) {
        if (model < 0) {
            return "no model";
        }
        const {index, pathText} = this.models[model];
        return `${index} ${this.text(pathText).split("/").pop()}`;
    },
    boardName(board) {
        return this.text(this.boards[board].name);
    },
    boardNamed(word) {
        return this.boards.findIndex((_, board) => this.boardName(board) === word);
    },
    countryName(country) {
        return country < 0 ? "no country" : this.text(this.countries[country]);
    },
    countryNamed(word) {
        return this.countries.findIndex((_, country) => this.countryName(country) === word);
    },

    // The set that words or fields choose; what they leave out is that of the tree's own set, which
    // its impdata and tvdata select, or the first that there is.
    choose({model, board, country}) {
        const first = (named, own, count) => (named >= 0 ? named : own >= 0 ? own : count ? 0 : -1);
        return {
            model: first(this.modelNamed(model), this.models.findIndex(({index}) => index === this.own.model), this.models.length),
            board: first(this.boardNamed(board), this.boards.findIndex(({path}) => path >= 0 && path === this.own.board), this.boards.length),
            country: first(this.countryNamed(country), this.countryNumbers.indexOf(this.own.country), this.countries.length),
        };
    },
    setRoute({model, board, country}) {
        return route(["set", this.modelWord(model), this.boardName(board), this.countryName(country)]);
    },
    // The route of a group of sets, "model=2,board=b1.ini"; null for one that the report does not know.
    setNamed(parts) {
        const isKnown = (part, find) => parts[part] === undefined || find.call(this, parts[part]) >= 0;
        if (!isKnown("model", this.modelNamed) || !isKnown("board", this.boardNamed) || !isKnown("country", this.countryNamed)) {
            return null;
        }
        if (parts.country !== undefined && parts.model === undefined && parts.board === undefined) {
            return route(["country", parts.country]);
        }
        return this.setRoute(this.choose(parts));
    },
});

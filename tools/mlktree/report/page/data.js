// The data of the page: compressed JSON, in which texts are numbers of one table.
//
//   texts                       every text once; number 0 is the empty one
//   files                       path, kind, bytes, exists, unused; sets: groups of sets that use it;
//                               named: file and line in turns, -1 for the service itself; lines: its text;
//                               lost: line, value and the line that counts, in fours
//   findings, rules             of mlktree check
//   customers, models, boards   of the line; numbers of files are -1 for none
//   own                         the set that impdata and tvdata select
//   named                       value and file in turns: what values of items name
//   answers                     what sets answer, in pieces that many sets share (sets.js)
class Data {
    constructor(json) {
        Object.assign(this, json);
        this.fileIds = new Map(this.files.map((file, id) => [this.text(file.path), id]));
        this.named = pairs(this.named);
        this.ruleIds = new Map(this.rules.map((rule, id) => [rule.name, id]));
        this.readAnswers();
    }

    text(id) {
        return this.texts[id];
    }

    lineOf(file, number) {
        const lines = this.files[file] && this.files[file].lines;
        return lines && number >= 1 && number <= lines.length ? this.text(lines[number - 1]) : null;
    }
}

// A flat list as a map from each first number to the second.
function pairs(list) {
    const map = new Map();
    for (let i = 0; i < list.length; i += 2) {
        map.set(list[i], list[i + 1]);
    }
    return map;
}

// A list of differences as the numbers themselves.
function summed(differences) {
    const numbers = new Int32Array(differences.length);
    let sum = 0;
    for (let i = 0; i < differences.length; ++i) {
        sum += differences[i];
        numbers[i] = sum;
    }
    return numbers;
}

let data = null;  // until the page is unpacked

async function unpack(packed) {
    if (typeof DecompressionStream !== "function") {
        throw new Error("This browser cannot unpack the report. Use Chrome or Edge from version 80, Firefox from " +
                        "113, or Safari from 16.4; the overview above is complete.");
    }
    const binary = atob(packed);
    const bytes = new Uint8Array(binary.length);
    for (let i = 0; i < binary.length; ++i) {
        bytes[i] = binary.charCodeAt(i);
    }
    const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
    return new Data(JSON.parse(await new Response(stream).text()));
}

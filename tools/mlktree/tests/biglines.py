"""Product lines of any size, made of the sample's files, for tests of the report."""

import re
import shutil
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
SAMPLE = ROOT / "samples" / "partitions"


def country_names(count):
    """Names that the service knows, from the sample's lists."""
    names = []
    for path in sorted((SAMPLE / "tvconfigs" / "country").iterdir()):
        for line in path.read_text(encoding="utf-8").splitlines():
            name = line.split(",")[0].strip()
            if re.fullmatch(r"[A-Z_]+", name) and name not in names:
                names.append(name)
    return names[:count]


def write_line(folder, models, boards=4, countries=60):
    """Models of some 400 lines, each of them a file with a name of its own, boards, and countries with plans."""
    shutil.copytree(SAMPLE, folder)
    tvconfigs = Path(folder) / "tvconfigs"
    model = (tvconfigs / "model/TRQ43_M2_EU.ini").read_text(encoding="utf-8")
    board = (tvconfigs / "board/skerry_b2.ini").read_text(encoding="utf-8")
    for emptied in ("model", "board"):
        shutil.rmtree(tvconfigs / emptied)
        (tvconfigs / emptied).mkdir()
    for i in range(1, models + 1):
        (tvconfigs / f"model/M{i}.ini").write_text(model.replace("TRQ43-M2", f"LINE-{i}"), encoding="utf-8")
    (tvconfigs / "system/tarnquill_skerry.ini").write_text(
        "".join(f'Model_{i} = "/tvconfigs/model/M{i}.ini"\n' for i in range(1, models + 1)), encoding="utf-8")
    for i in range(1, boards + 1):
        (tvconfigs / f"board/b{i}.ini").write_text(board, encoding="utf-8")
    names = country_names(countries)
    (tvconfigs / "country/country_eu.txt").write_text("".join(f"{name},XX\n" for name in names), encoding="utf-8")
    impdata = Path(folder) / "impdata"
    (impdata / "board_id.bin").write_text("BOARD_ID=/tvconfigs/board/b1.ini\n", encoding="utf-8")
    (impdata / "project_id.bin").write_text("PROJECT_ID=1\n", encoding="utf-8")

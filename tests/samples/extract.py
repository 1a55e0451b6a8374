"""What real-world lists hold, read without the program: the independent side of the comparison.

Each function takes the text of one file (a character is a byte; lines end in a line feed) and gives its entities in
the order of the file: the type, then the tags and values in the order in which the template writes them. Nothing here
knows of templates: cells are found by separators, by the columns of the heading, or by the csv module.
"""

import csv
import io
import re

IN_MIL = (("SCALE", "1.000000"), ("UNITS", "Mil"))
IN_MM = (("SCALE", "1.000000"), ("UNITS", "MM"))
IN_INCH = (("SCALE", "1.000000"), ("UNITS", "Inch"))


def part(*pairs):
    return ("Part", list(pairs))


def drill(*pairs):
    return ("Drill", list(pairs))


def aperture(*pairs):
    return ("Aperture", list(pairs))


def designators(text, separator):
    return [("REF_DESIGNATOR", name.strip()) for name in text.split(separator) if name.strip()]


def lines_after(text, heading):
    """The lines behind the one that starts with `heading`."""
    lines = text.split("\n")
    at = next(number for number, line in enumerate(lines) if line.startswith(heading))
    return lines[at + 1:]


def columns(heading, titles):
    """Slices of the columns whose titles these are, each up to the next title."""
    starts = [heading.index(title) for title in titles] + [None]
    return [slice(first, last) for first, last in zip(starts, starts[1:])]


def table(text, titles):
    """Rows of a table of fixed columns, each cell without its padding."""
    heading = next(line for line in text.split("\n") if line.startswith(titles[0]) and titles[-1] in line)
    cuts = columns(heading, titles)
    return [[line[cut].strip() for cut in cuts] for line in lines_after(text, heading) if line.strip()]


def comma_rows(text, delimiter=","):
    return list(csv.reader(io.StringIO(text, newline=""), delimiter=delimiter))


# Placement lists


def allegro_place_v2_bang(text):
    unit = re.search(r"^UUNITS = (\w+)", text, re.M).group(1)
    for line in lines_after(text, "#-"):
        if not line:
            continue
        ref, x, y, rotation, mirror, symbol, _layer = (cell.strip() for cell in line.split("!"))
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("PACKAGE", symbol), ("X_LOCATION", x),
                   ("Y_LOCATION", y), ("ROTATION", rotation), ("SIDEDNESS", "BOTTOM" if mirror else "TOP"),
                   ("UNITS", unit))


def altium_banner_quoted_description(text):
    unit = text.split("Units used: ")[1].split("\n")[0]
    titles = ["Designator", "Comment", "Layer", "Footprint", "Center-X", "Center-Y", "Rotation", "Description"]
    for ref, comment, layer, footprint, x, y, rotation, description in table(text, titles):
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("PACKAGE", footprint),
                   ("VALUE", comment.strip('"')), ("DESCRIPTION", description[1:-1]), ("X_LOCATION", x),
                   ("Y_LOCATION", y), ("ROTATION", rotation), ("SIDEDNESS", layer), ("UNITS", unit))


def altium_mid_ref_pad_mm(text):
    for line in lines_after(text, "Designator"):
        if not line:
            continue
        ref, footprint, x, y, _rx, _ry, _px, _py, side, rotation, comment = line.split(None, 10)
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("PACKAGE", footprint), ("VALUE", comment.strip()),
                   ("X_LOCATION", x.replace("mm", "")), ("Y_LOCATION", y.replace("mm", "")), ("ROTATION", rotation),
                   ("SIDEDNESS", side), ("UNITS", "MM"))


def designspark_component_positions(text):
    for line in lines_after(text, "Name "):
        if not line or line.startswith("---"):
            continue
        ref, component = line[:10].strip(), line[10:40].strip()
        side, x, y, rotation = line[40:].split()
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", component), ("X_LOCATION", x), ("Y_LOCATION", y),
                   ("ROTATION", rotation), ("SIDEDNESS", side), ("UNITS", "thou"))


def eagle_centroid_banner(text):
    for line in lines_after(text, "RefDes"):
        if line:
            ref, side, x, y, rotation = line.split(",")
            yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("X_LOCATION", x), ("Y_LOCATION", y),
                       ("ROTATION", rotation), ("SIDEDNESS", side), ("UNITS", "Inch"))


def eagle_mountsmd(text):
    for line in text.rstrip("\n").split("\n"):
        ref, x, y, rotation, value, package = line.split()
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("PACKAGE", package), ("VALUE", value),
                   ("X_LOCATION", x), ("Y_LOCATION", y), ("ROTATION", rotation))


def eagle_partlist_position_inch(text):
    titles = ["Part", "Value", "Package", "Library", "Position", "Orientation"]
    for ref, value, package, _library, position, orientation in table(text, titles):
        x, y = position.strip("()").split(" ")
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("VALUE", value), ("PACKAGE", package),
                   ("X_LOCATION", x), ("Y_LOCATION", y), ("ROTATION", orientation.lstrip("MR")),
                   ("SIDEDNESS", "BOTTOM" if orientation.startswith("M") else "TOP"))


def kicad_positions(text):
    for line in text.rstrip("\n").split("\n"):
        if line.startswith("#"):
            continue
        words = line.split()
        if line.startswith(" "):
            words = ["", ""] + words
        ref, value, package, x, y, rotation, side = words
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("VALUE", value), ("PACKAGE", package),
                   ("X_LOCATION", x), ("Y_LOCATION", y), ("ROTATION", rotation), ("SIDEDNESS", side), ("UNITS", "MM"))


def tomu_quoted_mm_blank_csv_row(text):
    for ref, footprint, x, y, _rx, _ry, _px, _py, layer, rotation, comment in comma_rows(text)[1:]:
        if ref:
            yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("PACKAGE", footprint), ("VALUE", comment),
                       ("X_LOCATION", x[:-2]), ("Y_LOCATION", y[:-2]), ("ROTATION", rotation), ("SIDEDNESS", layer),
                       ("UNITS", "MM"))


def xpedition_components_tab_latin1(text):
    for ref, x, y, rotation, number, description, cell, side in comma_rows(text, "\t")[1:]:
        yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", number), ("PACKAGE", cell), ("DESCRIPTION", description),
                   ("X_LOCATION", x), ("Y_LOCATION", y), ("ROTATION", rotation), ("SIDEDNESS", side), ("UNITS", "MM"))


# Bills of materials and part lists


def eagle_bom_wide_trailing_blanks(text):
    for _quantity, value, device, parts in table(text, ["Qty", "Value", "Device", "Parts"]):
        yield part(*designators(parts, ","), ("PART_NUMBER", device), ("VALUE", value))


def eagle_partlist_schematic(text):
    titles = ["Part", "Value", "Device", "Package", "Library", "Sheet"]
    for ref, value, device, package, _library, _sheet in table(text, titles):
        yield part(("REF_DESIGNATOR", ref), ("VALUE", value), ("PART_NUMBER", device), ("PACKAGE", package))


def rambo_semicolon_designator_list(text):
    for line in lines_after(text, "Parts;"):
        cells = [cell.strip(" ") for cell in line.split(";")]
        if any(cells):
            yield part(*designators(cells[0], ","), ("PART_NUMBER", cells[7]), ("PACKAGE", cells[4]),
                       ("VALUE", cells[2]), ("DESCRIPTION", cells[5]))


def g3_fixed_columns_wrapped(text):
    rows = []
    titles = ["Item", "Qty", "Ref des.", "Distributer", "Dist. Part no.", "Description", "Package", "Type"]
    for row in table(text, titles):
        if row[0]:
            rows.append(row)
        else:
            rows[-1][2] += row[2] + row[3]
    for _item, _quantity, refs, distributer, number, description, package, kind in rows:
        if "Do-Not-Install" in refs + distributer:
            ref, note = (refs + distributer).split(None, 1)
            yield part(("REF_DESIGNATOR", ref), ("PART_NUMBER", ""), ("DESCRIPTION", note))
            continue
        packages = [("PACKAGE", package)] if package else []
        yield part(*designators(refs, ","), *packages, ("PART_NUMBER", number), ("DESCRIPTION", description),
                   ("PART_TYPE", kind))


def gnetlist_partslist_dots(text):
    body = text.split(".START\n")[1].split(".END")[0]
    titles = ["..device", "value", "footprint", "quantity", "refdes"]
    for device, value, footprint, _quantity, refs in table(body, titles):
        yield part(*designators(refs, " "), ("PART_NUMBER", device), ("PACKAGE", footprint), ("VALUE", value))


def odrive_quoted_latin1(text):
    for row in comma_rows(text)[1:]:
        if row:
            _quantity, refs, description, _rated, comment, library = row
            yield part(*designators(refs, ","), ("PART_NUMBER", library), ("VALUE", comment),
                       ("DESCRIPTION", description))


def ulx3s_1click_wide(text):
    lines = text.rstrip("\n").split("\n")
    titles = lines[0].split("\t")
    for line in lines[1:]:
        cells = {title: cell.strip() for title, cell in zip(titles, line.split("\t"))}
        yield part(*designators(cells["References"], ","), ("PART_NUMBER", cells["MPN"]), ("ALT_PART_1", cells["MPN2"]),
                   ("ALT_PART_2", cells["MPN3"]), ("SIDEDNESS", cells["Side"]))


def bbai_multiline_cell(text):
    for row in comma_rows(text)[1:]:
        _item, _number, _kind, _quantity, location, _maker, number, description, package = row
        # A value goes on over a line end, but the line end itself is no part of it.
        yield part(*designators(location, ","), ("PART_NUMBER", number), ("PACKAGE", package),
                   ("DESCRIPTION", description.replace("\n", "")))


def diptrace_cr_only(text):
    """One entity: without a line feed the list is a single line."""
    pairs = []
    for line in text.rstrip("\n").split("\r")[1:]:
        ref, value, name, pattern, _maker, _quantity, _sheet = line.split(",")
        if ref:
            pairs += [("REF_DESIGNATOR", ref), ("PART_NUMBER", name), ("PACKAGE", pattern), ("VALUE", value)]
    yield part(*pairs)


def digikey_utf8bom_mixed_eol(text):
    for row in comma_rows(text)[1:]:
        yield part(*designators(row[3], " "), ("PART_NUMBER", row[2]), ("ALT_PART_1", row[0]), ("DESCRIPTION", row[8]))


# Drill lists


def allegro_excellon_comment_holesizes(text):
    pattern = r"Holesize (\d+)\. = (\S+) Tolerance = (\S+)/(\S+) (\S+) MILS"
    for tool, size, plus, minus, plated in re.findall(pattern, text):
        yield drill(("TCODE", tool), ("DIAMETER", size), ("PLATED", plated), ("POS_TOLERANCE", plus),
                    ("NEG_TOLERANCE", minus), *IN_MIL)


def allegro_ncdrill_log(text):
    for line in text.split("Quantity\n")[1].split("\n"):
        words = line.replace("/", " ").split()
        if words and re.fullmatch(r"T\d+", words[0]):
            tool, _number, size, plus, minus, plated, _count = words
            yield drill(("TCODE", tool[1:]), ("DIAMETER", size), ("PLATED", plated), ("POS_TOLERANCE", plus),
                        ("NEG_TOLERANCE", minus), *IN_MIL)


def altium_drill_report(text):
    for line in text.rstrip("\n").split("\n"):
        words = line.split()
        if words and re.fullmatch(r"T\d+", words[0]):
            yield drill(("TCODE", words[0][1:]), ("DIAMETER", words[1][:-2]), ("PLATED", words[5]), *IN_MM)


def diptrace_excellon_signed(text):
    for line in text.split("%")[0].rstrip("\n").split("\n"):
        if line.startswith("T"):
            tool, size = line[1:].split("C")
            yield drill(("TCODE", tool), ("DIAMETER", size), *IN_INCH)


def eagle_drill_station(text):
    for line in lines_after(text, " Code"):
        if line.startswith(" T"):
            tool, size, _used = line.split()
            yield drill(("TCODE", tool[1:]), ("DIAMETER", size.replace("inch", "")), *IN_INCH)


def kicad2014_drill_utf8_crlf(text):
    for line in text.rstrip("\n").split("\n"):
        if "mm" in line and "hole" in line:
            tool, size = line.split()[:2]
            yield drill(("TCODE", tool.lstrip("T")), ("DIAMETER", size.replace("mm", "")), *IN_MM)


def pads_drill_listing(text):
    for line in text.rstrip("\n").split("\n"):
        words = line.split()
        if words[0] == "Drill:":
            cells = dict(zip(words[::2], words[1::2]))
            yield drill(("TCODE", cells["Tool:"]), ("DIAMETER", cells["Drill:"]), ("DRILL_SPEED", cells["Speed:"]),
                        ("FEED_RATE", cells["Feed:"]), *IN_INCH)


def xpedition_ncdrill_log(text):
    for line in text.rstrip("\n").split("\n"):
        words = line.split()
        if words and words[0].isdigit():
            if "+/-" in words:
                tool, size, _both, tolerance, plated, _count = words
                plus, minus = "+" + tolerance, "-" + tolerance
            else:
                tool, size, plus, _slash, minus, plated, _count = words
            yield drill(("TCODE", tool), ("DIAMETER", size), ("PLATED", plated), ("POS_TOLERANCE", plus),
                        ("NEG_TOLERANCE", minus), *IN_MM)


# Aperture lists


def allegro_aperture_wheel(text):
    shared = (("SCALE", "0.001000"), ("UNITS", "Inch"))
    for line in lines_after(text, "WHEEL"):
        if not line:
            continue
        word, *sizes, code = line.split()
        if word in ("LINE", "CIRCLE"):
            shape, pairs = "Round", [("DIAMETER", sizes[0])]
        elif word == "SQUARE":
            shape, pairs = "Square", [("WIDTH", sizes[0]), ("ROTATION", sizes[1])]
        elif word == "RECTANGLE":
            shape, pairs = "Rectangle", [("WIDTH", sizes[0]), ("HEIGHT", sizes[1]), ("ROTATION", sizes[2])]
        else:
            shape, pairs = "Complex", [("DESCRIPTION", sizes[0]), ("ROTATION", sizes[1])]
        yield aperture(("DCODE", code[1:]), ("SHAPE", shape), *pairs, *shared)


def altium_aperture_list(text):
    for line in text.rstrip("\n").split("\n"):
        code, word, width, height, _hole, _use, rotation = line.split()
        shape = "Oblong" if word == "ROUNDED" else "Rectangle"
        yield aperture(("DCODE", code[1:]), ("SHAPE", shape), ("WIDTH", width), ("HEIGHT", height),
                       ("ROTATION", rotation), *IN_MIL)


def eagle_photoplotter(text):
    for line in lines_after(text, " Code"):
        words = line.replace("inch", "").split()
        if not words:
            continue
        code, word, size = words[:3]
        pairs = {"draw": [("DIAMETER", size)], "round": [("DIAMETER", size)], "octagon": [("DIAMETER", size)],
                 "square": [("WIDTH", size)], "rectangle": [("WIDTH", size), ("HEIGHT", words[4])]
                 if len(words) > 4 else []}[word]
        shape = "Round" if word == "draw" else word.capitalize()
        yield aperture(("DCODE", code[1:]), ("SHAPE", shape), *pairs, *IN_INCH)


def pads_photoplotter_apertures(text):
    for line in text.rstrip("\n").split("\n"):
        words = line.split()
        if not words or not words[0].isdigit():
            continue
        code, width, height, word, _count = words
        shape = {"RND": "Round", "SQR": "Square", "RECT": "Rectangle"}[word]
        sizes = {"RND": [("DIAMETER", width)], "SQR": [("WIDTH", width)],
                 "RECT": [("WIDTH", width), ("HEIGHT", height)]}[word]
        yield aperture(("DCODE", code), ("SHAPE", shape), *sizes, *IN_MIL)


def target_apertures_latin1(text):
    corners = [("RIGHT_TOP_CORNER", "1"), ("RIGHT_BOTTOM_CORNER", "1"), ("LEFT_TOP_CORNER", "1"),
               ("LEFT_BOTTOM_CORNER", "1")]
    for line in text.rstrip("\n").split("\n"):
        code, word, width, _by, height, *more = line.split()
        extra = dict(cell.split("=") for cell in more)
        if word in ("ROUND", "OCTAGON"):
            pairs = [("DIAMETER", width[:-2])]
        else:
            pairs = [("WIDTH", width[:-2]), ("HEIGHT", height[:-2])]
        if word == "ROUNDRECT":
            pairs += [("RADIUS", extra["R"][:-2])] + corners
        if "Phi" in extra:
            pairs.append(("ROTATION", extra["Phi"][:-1]))
        shape = "Rounded Rectangle" if word == "ROUNDRECT" else word.capitalize()
        yield aperture(("DCODE", code[1:]), ("SHAPE", shape), *pairs, *IN_MM)


READERS = {
    "placement/allegro_place_v2_bang.txt": allegro_place_v2_bang,
    "placement/altium_banner_quoted_description.txt": altium_banner_quoted_description,
    "placement/altium_mid_ref_pad_mm.txt": altium_mid_ref_pad_mm,
    "placement/designspark_component_positions.txt": designspark_component_positions,
    "placement/eagle_centroid_banner.csv": eagle_centroid_banner,
    "placement/eagle_mountsmd.mnt": eagle_mountsmd,
    "placement/eagle_partlist_position_inch.txt": eagle_partlist_position_inch,
    "placement/kicad2013_blank_refs_crlf.txt": kicad_positions,
    "placement/kicad5_bottom.pos": kicad_positions,
    "placement/tomu_quoted_mm_blank_csv_row.csv": tomu_quoted_mm_blank_csv_row,
    "placement/xpedition_components_tab_latin1.csv": xpedition_components_tab_latin1,
    "bom/bbai_multiline_cell.csv": bbai_multiline_cell,
    "bom/digikey_utf8bom_mixed_eol.csv": digikey_utf8bom_mixed_eol,
    "bom/diptrace_cr_only.csv": diptrace_cr_only,
    "bom/eagle_bom_wide_trailing_blanks.bom": eagle_bom_wide_trailing_blanks,
    "bom/eagle_partlist_schematic.txt": eagle_partlist_schematic,
    "bom/g3_fixed_columns_wrapped.txt": g3_fixed_columns_wrapped,
    "bom/gnetlist_partslist_dots.bom": gnetlist_partslist_dots,
    "bom/odrive_quoted_latin1.csv": odrive_quoted_latin1,
    "bom/rambo_semicolon_designator_list.txt": rambo_semicolon_designator_list,
    "bom/ulx3s_1click_wide.tsv": ulx3s_1click_wide,
    "drill/allegro_excellon_comment_holesizes.drl": allegro_excellon_comment_holesizes,
    "drill/allegro_ncdrill_log.log": allegro_ncdrill_log,
    "drill/altium_drill_report.DRR": altium_drill_report,
    "drill/diptrace_excellon_signed.drl": diptrace_excellon_signed,
    "drill/eagle_drill_station.dri": eagle_drill_station,
    "drill/kicad2014_drill_utf8_crlf.rpt": kicad2014_drill_utf8_crlf,
    "drill/pads_drill_listing.lst": pads_drill_listing,
    "drill/xpedition_ncdrill_log.txt": xpedition_ncdrill_log,
    "aperture/allegro_aperture_wheel.log": allegro_aperture_wheel,
    "aperture/altium_aperture_list.apr": altium_aperture_list,
    "aperture/eagle_photoplotter.gpi": eagle_photoplotter,
    "aperture/pads_photoplotter_apertures.rep": pads_photoplotter_apertures,
    "aperture/target_apertures_latin1.Apr": target_apertures_latin1,
}


def entities(name, content):
    """The entities of the file `name` (folder and file) with the bytes `content`: a list of (type, [(tag, value)])."""
    text = content.decode("latin-1").replace("\r\n", "\n")
    return list(READERS[name](text))

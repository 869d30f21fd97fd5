#!/usr/bin/env python3
"""Seeds for the fuzz targets.

make_seeds.py CORPUS_DIR OUT_DIR writes OUT_DIR/workbook (small workbooks of the corpus
as Excel saved them, and the same repacked without compression, so that mutations land
in the XML itself rather than in deflate streams whose checksums then fail),
OUT_DIR/templates (the smallest uncompressed workbooks of the shapes the library's
readers look for: field templates, table names, rules, coordinates, pairs) and
OUT_DIR/dxf (small drawings with the line ends, code page lines and headers the rewrite
tells apart).
"""
import io
import os
import sys
import zipfile

SEED_LIMIT = 16 * 1024


def workbook_seeds(corpus, out):
    os.makedirs(out, exist_ok=True)
    for name in sorted(os.listdir(corpus)):
        path = os.path.join(corpus, name)
        if not name.endswith(".xlsx") or os.path.getsize(path) > SEED_LIMIT:
            continue
        with open(path, "rb") as f:
            data = f.read()
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)
        stored = io.BytesIO()
        with zipfile.ZipFile(io.BytesIO(data)) as src, \
                zipfile.ZipFile(stored, "w", zipfile.ZIP_STORED) as dst:
            for info in src.infolist():
                dst.writestr(info.filename, src.read(info))
        with open(os.path.join(out, "stored_" + name), "wb") as f:
            f.write(stored.getvalue())


MAIN = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
REL = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PKG = "http://schemas.openxmlformats.org/package/2006/relationships"


def sheet_xml(rows):
    """A worksheet of inline-string and number cells; rows is a list of lists."""
    xml = []
    for r, row in enumerate(rows, start=1):
        cells = []
        for c, value in enumerate(row):
            ref = chr(ord("A") + c) + str(r)
            if isinstance(value, str):
                cells.append(f'<c r="{ref}" t="inlineStr"><is><t>{value}</t></is></c>')
            else:
                cells.append(f'<c r="{ref}"><v>{value}</v></c>')
        xml.append(f'<row r="{r}">{"".join(cells)}</row>')
    return f'<worksheet xmlns="{MAIN}"><sheetData>{"".join(xml)}</sheetData></worksheet>'


def package(rows):
    parts = {
        "[Content_Types].xml":
            '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
            '<Default Extension="xml" ContentType="application/xml"/></Types>',
        "_rels/.rels":
            f'<Relationships xmlns="{PKG}"><Relationship Id="rId1" '
            f'Type="{REL}/officeDocument" Target="xl/workbook.xml"/></Relationships>',
        "xl/workbook.xml":
            f'<workbook xmlns="{MAIN}" xmlns:r="{REL}"><sheets>'
            '<sheet name="Sheet1" sheetId="1" r:id="rId1"/></sheets></workbook>',
        "xl/_rels/workbook.xml.rels":
            f'<Relationships xmlns="{PKG}"><Relationship Id="rId1" '
            f'Type="{REL}/worksheet" Target="worksheets/sheet1.xml"/></Relationships>',
        "xl/worksheets/sheet1.xml": sheet_xml(rows),
    }
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", zipfile.ZIP_STORED) as z:
        for name, text in parts.items():
            z.writestr(name, text)
    return out.getvalue()


HEADER = ["TableName", "FieldsName", "FieldsType", "FieldsLenth", "Precision"]
TEMPLATE_SEEDS = {
    "fields.xlsx": [HEADER, ["roads", "NAME", "text", 50, 0], ["roads", "WIDTH", "double", 8, 2],
                    ["rivers", "CODE", "int", 4, 0]],
    "table_names.xlsx": [["TableName"], ["roads"], ["rivers"], ["roads"]],
    "rules.xlsx": [["Related layer"], ["Layer", "Field", "Rule", "Value"], ["roads", "NAME", "not empty", ""]],
    "coordinates.xlsx": [["No", "X", "Y"], [1, 500000.5, 4400000.25], [2, 500010, 4400010]],
    "pairs.xlsx": [["Parcel ", "owner"], ["road", "name"]],
}


def template_seeds(out):
    os.makedirs(out, exist_ok=True)
    for name, rows in TEMPLATE_SEEDS.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(package(rows))


DXF_SEEDS = {
    "header_lf.dxf": b"  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n"
                     b"  9\n$DWGCODEPAGE\n  3\nANSI_1252\n  0\nENDSEC\n  0\nEOF\n",
    "header_crlf.dxf": b"  0\r\nSECTION\r\n  2\r\nHEADER\r\n  9\r\n$DWGCODEPAGE\r\n"
                       b"  3\r\nANSI_936\r\n  0\r\nENDSEC\r\n  0\r\nEOF\r\n",
    "no_final_newline.dxf": b"  9\n$DWGCODEPAGE\n  3\nANSI_1252",
    "lone_cr.dxf": b"  1\nline\rwith\rcr\n\n\nx ANSI_ y\r\n\xc4\xcf\xbe\xa9\n",
    "binary.dxf": b"AutoCAD Binary DXF\r\n\x1a\x00\x01\nANSI_1252\n\r\n",
    "utf16.dxf": "  9\r\n$DWGCODEPAGE\r\n  3\r\nANSI_1252\r\n".encode("utf-16"),
    "entities.dxf": b"  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\n0\n 10\n0.0\n 20\n0.0\n"
                    b" 11\n1.0\n 21\n1.0\n  0\nENDSEC\n  0\nEOF\n",
}


def dxf_seeds(out):
    os.makedirs(out, exist_ok=True)
    for name, data in DXF_SEEDS.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)


def main():
    corpus, out = sys.argv[1], sys.argv[2]
    workbook_seeds(corpus, os.path.join(out, "workbook"))
    template_seeds(os.path.join(out, "templates"))
    dxf_seeds(os.path.join(out, "dxf"))


if __name__ == "__main__":
    main()

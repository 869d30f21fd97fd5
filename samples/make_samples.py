#!/usr/bin/python3
"""Writes the demo's sample data into this folder (see README.md).

Run from anywhere with the system Python, which needs openpyxl and GDAL's bindings
(Debian: python3-openpyxl python3-gdal python3-numpy). countries-110m.json comes from
the npm package world-atlas 2.0.2; when it is missing, `npm pack` fetches it.
"""
import json
import math
import os
import shutil
import subprocess
import tarfile
import tempfile

import numpy
import openpyxl
from openpyxl.styles import Font
from osgeo import gdal, ogr, osr

HERE = os.path.dirname(os.path.abspath(__file__))
gdal.UseExceptions()


def path(name):
    return os.path.join(HERE, name)


def fetch_countries():
    if os.path.exists(path("countries-110m.json")):
        return
    with tempfile.TemporaryDirectory() as tmp:
        subprocess.run(["npm", "pack", "world-atlas@2.0.2"], cwd=tmp, check=True,
                       stdout=subprocess.DEVNULL)
        with tarfile.open(os.path.join(tmp, "world-atlas-2.0.2.tgz")) as archive:
            archive.extract("package/countries-110m.json", tmp)
        shutil.copy(os.path.join(tmp, "package", "countries-110m.json"), path("countries-110m.json"))


def save(book, name):
    book.save(path(name))


def sheet_with(rows, bold_first=True):
    book = openpyxl.Workbook()
    sheet = book.active
    for row in rows:
        sheet.append(row)
    if bold_first:
        for cell in sheet[1]:
            cell.font = Font(bold=True)
    return book, sheet


def read_cities():
    rows = list(openpyxl.load_workbook(path("cities.xlsx")).active.iter_rows(values_only=True))
    return rows[0], rows[1:]


def write_cities_geojson():
    header, cities = read_cities()
    features = []
    for city in cities:
        values = dict(zip(header, city))
        features.append({
            "type": "Feature",
            "properties": {"NAME": values["NAME"], "COUNTRY": values["COUNTRY"],
                           "POP_MILLIONS": values["POP_MILLIONS"]},
            "geometry": {"type": "Point", "coordinates": [values["LON"], values["LAT"]]},
        })
    with open(path("cities.geojson"), "w", encoding="utf-8") as out:
        json.dump({"type": "FeatureCollection", "name": "cities", "features": features},
                  out, ensure_ascii=False, indent=1)
        out.write("\n")


# Capitals and continents of the countries of cities.xlsx and a few more, keyed by the
# names that countries-110m.json uses.
COUNTRY_FACTS = [
    ("China", "Beijing", "Asia"),
    ("Japan", "Tokyo", "Asia"),
    ("India", "New Delhi", "Asia"),
    ("Egypt", "Cairo", "Africa"),
    ("Brazil", "Brasília", "South America"),
    ("Mexico", "Mexico City", "North America"),
    ("Nigeria", "Abuja", "Africa"),
    ("France", "Paris", "Europe"),
    ("United States of America", "Washington, D.C.", "North America"),
    ("Canada", "Ottawa", "North America"),
    ("Australia", "Canberra", "Oceania"),
    ("Kenya", "Nairobi", "Africa"),
    ("Peru", "Lima", "South America"),
    ("Norway", "Oslo", "Europe"),
    ("Atlantis", "Poseidonia", "nowhere"),  # matches no country: the join skips it
]


def write_join_workbooks():
    # A title row above the headers, as the application's own exports have; the join
    # finds its key column in row 2 then.
    book, sheet = sheet_with([["Country facts"], ["Name", "Capital city", "Continent(text)"]],
                             bold_first=False)
    for row in COUNTRY_FACTS:
        sheet.append(list(row))
    sheet.column_dimensions["A"].width = 28
    sheet.column_dimensions["B"].width = 20
    sheet.column_dimensions["C"].width = 16
    save(book, "country-facts.xlsx")
    # Workbook headers to layer fields, for the join's --map.
    book, _ = sheet_with([["Capital city", "capital"], ["Continent", "continent"]], bold_first=False)
    save(book, "name-pairs.xlsx")


TEMPLATE_HEADER = ["TableName", "FieldsName", "FieldsType", "FieldsLenth", "Precision"]
TEMPLATE_ROWS = [
    ["countries", "NAME", "String", "64", "0"],
    ["countries", "ISO_N3", "String", "3", "0"],
    ["countries", "CAPITAL", "String", "64", "0"],
    ["countries", "CONTINENT", "String", "32", "0"],
    ["cities", "NAME", "String", "64", "0"],
    ["cities", "COUNTRY", "String", "64", "0"],
    ["cities", "LAT", "Double", "10", "4"],
    ["cities", "LON", "Double", "10", "4"],
    ["cities", "POP_MILLIONS", "Double", "8", "1"],
]


def write_templates():
    book, _ = sheet_with([TEMPLATE_HEADER] + TEMPLATE_ROWS)
    save(book, "field-template.xlsx")
    book, _ = sheet_with([["TableName"], ["countries"], ["cities"]])
    save(book, "table-names.xlsx")


def write_check_rules():
    book, _ = sheet_with([
        ["Related layer", "Related field", "Check", "Parameter", "Error description"],
        ["layer", "field", "check", "parameter", "description"],
        ["countries", "NAME", "not empty", "", "A country has no name"],
        ["countries", "ISO_N3", "length", "3", "The ISO code is not three digits"],
        ["cities", "POP_MILLIONS", "range", "0,40", "Population out of range"],
    ])
    save(book, "check-rules.xlsx")


def write_boundary():
    # A rough outline around Paris, typed as X, Y pairs without a header.
    outline = [(2.22, 48.82), (2.47, 48.82), (2.47, 48.91), (2.22, 48.91)]
    book, _ = sheet_with([list(point) for point in outline], bold_first=False)
    save(book, "paris-outline.xlsx")


def write_elevation_points():
    header, cities = read_cities()
    continent = {"China": "Asia", "Japan": "Asia", "India": "Asia", "Egypt": "Africa",
                 "Nigeria": "Africa", "Brazil": "Americas", "Mexico": "Americas",
                 "United States": "Americas", "France": "Europe"}
    lines = ["# Cities of cities.xlsx as longitude, latitude, grouped by continent.",
             "# A line that does not start with a number is a heading."]
    for group in ["Asia", "Africa", "Americas", "Europe"]:
        lines.append(group)
        for city in cities:
            values = dict(zip(header, city))
            if continent[values["COUNTRY"]] == group:
                lines.append(f"{values['LON']}, {values['LAT']}")
    lines += ["Off the map", "200, 10"]
    with open(path("elevation-points.txt"), "w", encoding="utf-8") as out:
        out.write("\n".join(lines) + "\n")


def write_dem():
    """A made-up relief on a 1-degree grid: land from countries-110m.json rises with
    the distance from the coast, with a few ridges; the sea lies at -100."""
    columns, rows = 360, 180
    driver = gdal.GetDriverByName("MEM")
    land = driver.Create("", columns, rows, 1, gdal.GDT_Byte)
    land.SetGeoTransform([-180, 1, 0, 90, 0, -1])
    world = ogr.Open(path("countries-110m.json"))
    gdal.RasterizeLayer(land, [1], world.GetLayerByName("land"), burn_values=[1],
                        options=["ALL_TOUCHED=FALSE"])
    distance = driver.Create("", columns, rows, 1, gdal.GDT_Float32)
    distance.SetGeoTransform(land.GetGeoTransform())
    gdal.ComputeProximity(land.GetRasterBand(1), distance.GetRasterBand(1),
                          ["VALUES=0", "DISTUNITS=PIXEL"])
    mask = land.GetRasterBand(1).ReadAsArray()
    inland = distance.GetRasterBand(1).ReadAsArray()
    lon = numpy.arange(columns) - 179.5
    lat = 89.5 - numpy.arange(rows)
    lon, lat = numpy.meshgrid(lon, lat)
    ridges = 600 * numpy.abs(numpy.sin(numpy.radians(lon) * 5) * numpy.cos(numpy.radians(lat) * 3))
    height = 20 + 90 * inland ** 1.3 + ridges * numpy.minimum(inland, 4) / 4
    dem = numpy.where(mask == 1, numpy.minimum(height, 6000), -100).astype(numpy.int16)

    out = gdal.GetDriverByName("GTiff").Create(path("dem.tif"), columns, rows, 1, gdal.GDT_Int16,
                                               ["COMPRESS=DEFLATE", "PREDICTOR=2"])
    out.SetGeoTransform([-180, 1, 0, 90, 0, -1])
    wgs84 = osr.SpatialReference()
    wgs84.ImportFromEPSG(4326)
    out.SetProjection(wgs84.ExportToWkt())
    band = out.GetRasterBand(1)
    band.SetNoDataValue(-9999)
    band.WriteArray(dem)
    out.FlushCache()


def write_topology():
    # Findings of a topology check of the countries layer, as a check tool reports them.
    errors = [
        {"number": 1, "ruleId": 1, "featureId": 44, "relatedFeatureId": 0, "layerId": 1,
         "layerName": "countries", "coordinate": "2.35,48.86",
         "ruleDescription": "Must not self-intersect", "isException": False},
        {"number": 2, "ruleId": 2, "featureId": 57, "relatedFeatureId": 58, "layerId": 1,
         "relatedLayerId": 1, "layerName": "countries", "relatedLayerName": "countries",
         "coordinate": "3.38,6.52", "ruleDescription": "Must not overlap", "isException": False},
        {"number": 3, "ruleId": 2, "featureId": 58, "relatedFeatureId": 58, "layerId": 1,
         "relatedLayerId": 1, "layerName": "countries", "relatedLayerName": "countries",
         "coordinate": "31.24,30.04", "ruleDescription": "Must not overlap", "isException": True},
        {"number": 4, "ruleId": 3, "featureId": 0, "relatedFeatureId": 0, "layerId": 2,
         "relatedLayerId": 1, "layerName": "cities", "relatedLayerName": "countries",
         "coordinate": "-74.01,40.71", "ruleDescription": "Must be inside", "unreadable": True},
    ]
    with open(path("topology.json"), "w", encoding="utf-8") as out:
        json.dump({"attributeCheck": False, "errors": errors}, out, indent=2)
        out.write("\n")


def write_dxf():
    lines = ["0", "SECTION", "2", "HEADER", "9", "$ACADVER", "1", "AC1015",
             "9", "$DWGCODEPAGE", "3", "ANSI_1252", "0", "ENDSEC", "0", "EOF"]
    with open(path("drawing.dxf"), "w", encoding="ascii", newline="\r\n") as out:
        out.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    fetch_countries()
    write_cities_geojson()
    write_join_workbooks()
    write_templates()
    write_check_rules()
    write_boundary()
    write_elevation_points()
    write_dem()
    write_topology()
    write_dxf()

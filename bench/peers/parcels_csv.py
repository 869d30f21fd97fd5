"""Point features with ten attribute fields as CSV, for GDAL to load into a GeoPackage:
X and Y become the geometry, the other columns the fields (types detected).

    parcels_csv.py <features> <output.csv>
"""
import csv
import datetime
import sys

FIELDS = ["ID", "CODE", "OWNER", "AREA", "PERIMETER", "CLASS", "VALUE", "SLOPE",
          "SURVEYED", "NOTE"]


def main():
    count, path = int(sys.argv[1]), sys.argv[2]
    first_survey = datetime.date(2017, 7, 14)
    with open(path, "w", newline="") as out:
        writer = csv.writer(out)
        writer.writerow(["X", "Y"] + FIELDS)
        for i in range(count):
            writer.writerow([
                "%.3f" % (500000.0 + i * 0.25), "%.3f" % (4000000.0 - i * 0.125),
                i + 1, "P-%07d" % i, "Owner %d" % (i % 5000), "%.2f" % (1000.0 + i * 0.37),
                "%.3f" % (120.0 + (i % 977) * 0.125), i % 12, 150000 + i * 13,
                "%.4f" % ((i % 45) / 3.0), (first_survey + datetime.timedelta(days=i % 3000)).isoformat(),
                "checked" if i % 3 == 0 else ""])


main()

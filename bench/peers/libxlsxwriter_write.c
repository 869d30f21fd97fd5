/* The write workload with libxlsxwriter: the cells of bench/benchcells.h, every cell
 * centred, vertically centred and thinly bordered.
 *
 *     libxlsxwriter_write <cells> <output.xlsx> [constant]
 *
 * "constant" selects the constant-memory mode, which writes each row as the next one
 * starts and keeps its texts inline instead of in a shared string table. */

#include <xlsxwriter.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define COLUMNS 10

int main(int argc, char **argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: libxlsxwriter_write <cells> <output.xlsx> [constant]\n");
        return 2;
    }
    const long long rows = atoll(argv[1]) / COLUMNS;
    lxw_workbook_options options = {0};
    options.constant_memory = argc > 3 && strcmp(argv[3], "constant") == 0;
    lxw_workbook *workbook = workbook_new_opt(argv[2], &options);
    if (!workbook)
        return fprintf(stderr, "cannot create %s\n", argv[2]), 1;
    lxw_worksheet *sheet = workbook_add_worksheet(workbook, NULL);
    lxw_format *format = workbook_add_format(workbook);
    format_set_align(format, LXW_ALIGN_CENTER);
    format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
    format_set_border(format, LXW_BORDER_THIN);

    worksheet_write_string(sheet, 0, 0, "Benchmark cells", format);
    char text[48];
    for (int c = 0; c < COLUMNS; ++c) {
        snprintf(text, sizeof text, "Column %d", c + 1);
        worksheet_write_string(sheet, 1, (lxw_col_t)c, text, format);
    }
    for (long long r = 0; r < rows; ++r) {
        for (int c = 0; c < COLUMNS; ++c) {
            if (c % 2 == 0)
                snprintf(text, sizeof text, "Feature %lld-%d", r, c);
            else
                snprintf(text, sizeof text, "%lld.%04lld", r, (r * 7 + c * 1237) % 10000);
            worksheet_write_string(sheet, (lxw_row_t)(r + 2), (lxw_col_t)c, text, format);
        }
    }
    lxw_error error = workbook_close(workbook);
    if (error != LXW_NO_ERROR)
        return fprintf(stderr, "%s\n", lxw_strerror(error)), 1;
    return 0;
}

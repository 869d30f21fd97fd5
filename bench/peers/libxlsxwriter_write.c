/* The write workload with libxlsxwriter: the cells of bench/benchcells.h, every cell
 * centred, vertically centred and thinly bordered.
 *
 *     libxlsxwriter_write <cells> <output.xlsx> [constant]
 *
 * "constant" selects the constant-memory mode, which writes each row as the next one
 * starts and keeps its texts inline instead of in a shared string table. Rows beyond a
 * sheet's last row go on to a next sheet with its own title and header. */

#include <xlsxwriter.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define COLUMNS 10
#define DATA_ROWS_PER_SHEET (1048576 - 2)

/* The decimal digits of value at out, at least minimum of them; returns the position
 * after them. By hand, as bench/benchcells.h does: printf would cost a fifth of the run. */
static char *append_digits(char *out, unsigned long long value, int minimum)
{
    char reversed[24];
    int count = 0;
    do {
        reversed[count++] = (char)('0' + value % 10);
        value /= 10;
    } while (value != 0 || count < minimum);
    while (count > 0)
        *out++ = reversed[--count];
    return out;
}

/* The text of data row r and column c, both from 0, as bench/benchcells.h spells it. */
static void cell_text(char *text, long long r, int c)
{
    char *end = text;
    if (c % 2 == 0) {
        memcpy(end, "Feature ", 8);
        end = append_digits(end + 8, (unsigned long long)r, 1);
        *end++ = '-';
        end = append_digits(end, (unsigned long long)c, 1);
    } else {
        end = append_digits(end, (unsigned long long)r, 1);
        *end++ = '.';
        end = append_digits(end, (unsigned long long)((r * 7 + c * 1237) % 10000), 4);
    }
    *end = '\0';
}

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
    lxw_format *format = workbook_add_format(workbook);
    format_set_align(format, LXW_ALIGN_CENTER);
    format_set_align(format, LXW_ALIGN_VERTICAL_CENTER);
    format_set_border(format, LXW_BORDER_THIN);

    char text[48];
    for (long long first = 0; first == 0 || first < rows; first += DATA_ROWS_PER_SHEET) {
        lxw_worksheet *sheet = workbook_add_worksheet(workbook, NULL);
        worksheet_write_string(sheet, 0, 0, "Benchmark cells", format);
        for (int c = 0; c < COLUMNS; ++c) {
            snprintf(text, sizeof text, "Column %d", c + 1);
            worksheet_write_string(sheet, 1, (lxw_col_t)c, text, format);
        }
        const long long last = rows < first + DATA_ROWS_PER_SHEET ? rows
                                                                  : first + DATA_ROWS_PER_SHEET;
        for (long long r = first; r < last; ++r) {
            for (int c = 0; c < COLUMNS; ++c) {
                cell_text(text, r, c);
                worksheet_write_string(sheet, (lxw_row_t)(r - first + 2), (lxw_col_t)c, text,
                                       format);
            }
        }
    }
    lxw_error error = workbook_close(workbook);
    if (error != LXW_NO_ERROR)
        return fprintf(stderr, "%s\n", lxw_strerror(error)), 1;
    return 0;
}

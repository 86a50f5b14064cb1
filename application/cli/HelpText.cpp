#include "HelpText.h"

std::string helpText()
{
    return R"(surrogate: fits surrogate models to tables of cases and evaluates them

    surrogate COMMAND CASES.csv [options]
    surrogate COMMAND PROJECT.surrogate.xml [options]
    surrogate evaluate|predict|export MODEL.json [options]

Commands
  summary     the variables (kind, role, minimum, maximum, missing cells) and the cases
  fit         fits a model and reports how good it is, per output
  evaluate    the outputs over the grid of the inputs' values, as a table
  predict     the outputs at the rows of a second table (--points FILE), as that table with a
              column "NAME predicted" for each output; empty where an input is missing
  equations   the response-surface equations, with a legend of their symbols
  plot        a picture (--kind, -o FILE.svg, FILE.png or FILE.pdf), with a panel for each output
  compare     response surface and Kriging by cross-validation: how well each predicts cases that
              it has not seen, and which one to use, per output
  export      the model as a file that computes it elsewhere (--format)
  project     what a project document holds, and whether its case file is there
  check TEXT  the values of a distribution text, or what is wrong with it; reads no file

Cases
  CASES.csv is separated by commas, semicolons or tabs, with the names in the first line; "-" is
  the standard input. A column is numeric if every filled cell is a number, else text. Missing
  cells are empty, NA, N/A, NaN, null, ? or -.
  --separator S    comma, semicolon or tab, for both files; recognised if absent
  --decimal M      point or comma, for both files; recognised if absent. Only where semicolons or
                   tabs separate can numbers have decimal commas

Projects
  --save FILE.surrogate.xml   keeps what was chosen once the command has succeeded: the case file,
                   how it is read, roles, excluded cases, model, terms, values. A project that is
                   replaced stays as FILE.surrogate.xml.bak
  A command that is given a project document starts from what it holds; options override it, name
  by name. The case file is looked for where it was, seen from the document, and must not have
  changed.
  --cases FILE     the case file to take instead: when it has moved, or on purpose has changed

Roles
  -x NAME          an input; may be repeated, or a list separated by commas. Without it every
                   numeric column that is no output
  -y NAME          an output, likewise
  --exclude CASES  case numbers, from 1, such as 3,7-9; none takes all in again

  Outputs asked for together are fitted to the cases that are valid for all of them.

Model
  -m, --model M    response-surface (default) or kriging
  --terms T        the polynomial of a response surface: linear, interactions (these and the
                   products of two inputs) or quadratic (these and the squares, the default)
  --select-terms   of these it keeps only the terms that lower the corrected Akaike criterion
                   (AICc), for each output by itself; a linear term stays while one of second order
                   has its input. What was left out is said, and the statistics of the terms that
                   stay do not know of the choice: their p values are too small. compare tells
                   whether it helps: it selects in each fold
  --all-terms      takes the choice back that a project holds

Comparison (compare)
  --folds K        the cases are parted into K folds, each predicted by models of the others; 10,
                   or fewer if there are fewer cases. Copies of a case stay together, and the same
                   cases are always parted alike

Export
  --format F       text: formulas for a reader; c: a C99 file with surrogate_0() ... and
                   surrogate_self_check(), a program with -DSURROGATE_MAIN; python: a module with
                   predict() and self_check(), also a script; excel: a workbook (-o FILE);
                   json: what evaluate, predict and export take in the place of CASES.csv, if the
                   name ends with .json
  All carry ten check points; all but the text check themselves by them.

Values (evaluate, plot)
  --sweep NAME=TEXT   the values of a distribution text, such as 4 - 80 : 20, 42 (a range of 20
                      values from 4 to 80, and 42)
  --count NAME=N      N values, evenly over the range of the variable
  --at NAME=VALUE     one value
  An input with none of them stays at its minimum.

Report (fit)
  --report FILE.html   also writes a page with the figures, statistics, equations and pictures of
                   each output, sweeps of its six most important inputs among them, which stands
                   alone and can be printed

Intervals (evaluate, predict)
  --interval P     two columns more after the one of each output, "NAME lower" and "NAME upper":
                   between them P percent (95, say) of further cases at the point would lie, their
                   noise included, if the model is right. Empty where the cases are too few to tell

Pictures (plot)
  --kind sweep     the model along one input, with the band in which it lies with 95 percent
                   probability by its standard errors, and the cases near: those whose other
                   inputs lie within 10 % of their range of where they are held
  --kind contour   the model over two inputs, the first one to the right
                   Here --sweep NAME alone sweeps over the range; inputs that nothing is said
                   about are swept by themselves if no other ones are left
  --kind actual    each case as a fit to the other cases predicts it, against its actual value
  --kind residuals the differences of the two, against the predictions
  --kind coefficients   those of a response surface for inputs coded to -1 and 1, the largest
                   first, with their 95 % confidence limits
  --size WxH       pixels of each panel, 800x600 if absent

Output
  -o, --output FILE  the table or text goes there instead of the standard output ("-")
  --json             an object instead of text. A table is its member "table", unless -o FILE
                     names a file for the table; the object is printed then
  -q, --quiet        no notes, no progress
  --threads N        threads to use, all cores if absent
  --version, -h, --help

Exit codes
  0 done    1 the model cannot be fitted or evaluated    2 wrong use
  3 bad case data, or a project or an exported model that cannot be used
  4 bad distribution text    5 a file cannot be read or written    130 ended by Ctrl-C
)";
}

std::string versionText()
{
    return "surrogate " SURROGATE_VERSION "\n";
}

# Splits R's volcano grid into samples.csv and truth.csv beside this script. Needs base R only.
#
#     Rscript examples/volcano/make_samples.R

numSamples <- 300
# Named in full, so that a later default generator cannot move the split.
set.seed(1991, kind = "Mersenne-Twister", normal.kind = "Inversion", sample.kind = "Rejection")

script <- sub("^--file=", "", grep("^--file=", commandArgs(), value = TRUE)[1])
folder <- dirname(script)

spacing <- 10 # metres
cells <- data.frame(x = spacing * (as.vector(row(volcano)) - 1),
                    y = spacing * (as.vector(col(volcano)) - 1),
                    elevation = as.vector(volcano))
stopifnot(nrow(cells) == 87 * 61)

sampled <- sample(nrow(cells), numSamples)

writeTable <- function(rows, name) {
  write.csv(cells[rows, ], file.path(folder, name), quote = FALSE, row.names = FALSE)
}
writeTable(sort(sampled), "samples.csv")
writeTable(setdiff(seq_len(nrow(cells)), sampled), "truth.csv")

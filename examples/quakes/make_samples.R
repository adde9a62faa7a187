# Splits R's quakes table into samples.csv and truth.csv beside this script. Needs base R only.
#
#     Rscript examples/quakes/make_samples.R

numSamples <- 800
# Named in full, so that a later default generator cannot move the split.
set.seed(1964, kind = "Mersenne-Twister", normal.kind = "Inversion", sample.kind = "Rejection")

script <- sub("^--file=", "", grep("^--file=", commandArgs(), value = TRUE)[1])
folder <- dirname(script)

events <- quakes[, c("long", "lat", "depth", "mag", "stations")]
stopifnot(nrow(events) == 1000)

sampled <- sample(nrow(events), numSamples)

writeTable <- function(rows, name) {
  write.csv(events[rows, ], file.path(folder, name), quote = FALSE, row.names = FALSE)
}
writeTable(sort(sampled), "samples.csv")
writeTable(setdiff(seq_len(nrow(events)), sampled), "truth.csv")

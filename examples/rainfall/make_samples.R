# Writes the Swiss rainfall contest's 100 gauges to samples.csv and the other 367 to truth.csv beside this script.
# Needs the packages gstat and sp (Debian: r-cran-gstat, which brings r-cran-sp).
#
#     Rscript examples/rainfall/make_samples.R

suppressMessages(library(sp))
library(gstat)
data(sic97)

script <- sub("^--file=", "", grep("^--file=", commandArgs(), value = TRUE)[1])
folder <- dirname(script)

asTable <- function(points) {
  points <- as.data.frame(points)
  data.frame(id = points$ID, x = points$X, y = points$Y, rainfall = points$rainfall)
}
samples <- asTable(sic_obs)
gauges <- asTable(sic_full)
# The contest's gauges are among all gauges, unchanged, and no two gauges share an identifier or a place.
stopifnot(nrow(samples) == 100, nrow(gauges) == 467,
          anyDuplicated(gauges$id) == 0, anyDuplicated(gauges[c("x", "y")]) == 0,
          all(gauges[match(samples$id, gauges$id), ] == samples))
truth <- gauges[!(gauges$id %in% samples$id), ]
stopifnot(nrow(truth) == 367)

writeTable <- function(rows, name) {
  rows <- rows[order(rows$id), ]
  rows[] <- lapply(rows, format, scientific = FALSE, trim = TRUE, digits = 15)
  write.csv(rows, file.path(folder, name), quote = FALSE, row.names = FALSE)
}
writeTable(samples, "samples.csv")
writeTable(truth, "truth.csv")

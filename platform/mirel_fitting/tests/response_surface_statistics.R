# Produces the figures that ResponseSurfaceStatisticsTest.cpp compares with, by R's own lm, anova,
# predict and AIC (R Core Team: R, a language and environment for statistical computing).
# Run: Rscript response_surface_statistics.R
options(digits = 15)

# Chemical vapour deposition, NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3.
cvd <- data.frame(
  V1 = c(80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42),
  V2 = c(6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6),
  y = c(4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0))
code <- function(x) (x - (max(x) + min(x)) / 2) / ((max(x) - min(x)) / 2)
cvd$c1 <- code(cvd$V1)
cvd$c2 <- code(cvd$V2)

show <- function(title, value) {
  cat("\n##", title, "\n")
  print(value)
}

inflation <- function(columns) {
  sapply(seq_len(ncol(columns)), function(j) {
    others <- lm(columns[, j] ~ columns[, -j])
    1 / (1 - summary(others)$r.squared)
  })
}

report <- function(fit, data, what) {
  show(paste(what, "coefficients"), cbind(summary(fit)$coefficients, confint(fit, level = 0.9)))
  show(paste(what, "variance inflation"), inflation(model.matrix(fit)[, -1]))
}

raw <- lm(y ~ V1 + V2 + I(V1^2) + I(V1 * V2) + I(V2^2), cvd)
coded <- lm(y ~ c1 + c2 + I(c1^2) + I(c1 * c2) + I(c2^2), cvd)
report(raw, cvd, "raw")
report(coded, cvd, "coded")
cvd$f1 <- (cvd$V1 - 42) / (42 - 15.13)
cvd$f2 <- (cvd$V2 - 6) / (6 - 3.17)
show("factorial points at -1 and 1",
     coef(lm(y ~ f1 + f2 + I(f1^2) + I(f1 * f2) + I(f2^2), cvd)))

# Entered in the order linear, interaction, square.
constant <- lm(y ~ 1, cvd)
linear <- lm(y ~ c1 + c2, cvd)
interaction <- lm(y ~ c1 + c2 + I(c1 * c2), cvd)
pure <- lm(y ~ factor(paste(V1, V2)), cvd)
show("model", anova(constant, coded))
sequential <- anova(constant, linear, interaction, coded)
show("sequential", sequential)
show("p of sequential", sequential$`Pr(>F)`)
show("lack of fit", anova(coded, pure))
show("total", sum((cvd$y - mean(cvd$y))^2))

leverage <- hatvalues(coded)
press <- sum((residuals(coded) / (1 - leverage))^2)
show("summary", c(r2 = summary(coded)$r.squared, adjusted = summary(coded)$adj.r.squared,
  predicted = 1 - press / sum((cvd$y - mean(cvd$y))^2), press = press,
  rmse = summary(coded)$sigma))
show("leverages", leverage)

# R's AIC counts the variance as a parameter.
aicc <- function(fit) {
  n <- length(residuals(fit))
  k <- length(coef(fit)) + 1
  AIC(fit) + 2 * k * (k + 1) / (n - k - 1)
}
show("AICc", c(quadratic = aicc(coded), linear = aicc(linear), interaction = aicc(interaction)))

b <- coef(coded)
B <- matrix(c(b[4], b[5] / 2, b[5] / 2, b[6]), 2)
point <- solve(B, -b[2:3] / 2)
show("stationary point, coded", point)
show("stationary point", c(42 + 38 * point[1], 6 + 4 * point[2]))
show("value there", b[1] + sum(b[2:3] * point) / 2)
show("curvatures", sort(eigen(B)$values))

show("intervals", rbind(
  predict(raw, data.frame(V1 = c(30, 100), V2 = c(5, 1)), interval = "prediction", level = 0.95),
  predict(raw, data.frame(V1 = c(30, 100), V2 = c(5, 1)), interval = "confidence", level = 0.95)))
show("standard errors", predict(raw, data.frame(V1 = c(30, 100), V2 = c(5, 1)), se.fit = TRUE)$se.fit)

# Backward selection: a term goes if the rest has a lower AICc; linear terms stay as long as a term
# of second order needs them.
eliminate <- function(terms, data) {
  repeat {
    current <- aicc(lm(reformulate(terms, "y"), data))
    needed <- c(if (any(grepl("c1 *\\^|c1 \\*", terms))) "c1",
                if (any(grepl("c2 *\\^|\\* c2", terms))) "c2")
    candidates <- setdiff(terms, needed)
    scores <- sapply(candidates, function(one) {
      rest <- setdiff(terms, one)
      aicc(if (length(rest) > 0) lm(reformulate(rest, "y"), data) else lm(y ~ 1, data))
    })
    if (length(scores) == 0 || min(scores) >= current) return(list(terms = terms, aicc = current))
    cat("drop", names(which.min(scores)), "AICc", min(scores), "\n")
    terms <- setdiff(terms, names(which.min(scores)))
    if (length(terms) == 0) return(list(terms = terms, aicc = min(scores)))
  }
}
show("selection", eliminate(c("c1", "c2", "I(c1^2)", "I(c1 * c2)", "I(c2^2)"), cvd))

# The same cases with an output that is off by 5 in the fourth.
spoiled <- cvd
spoiled$y[4] <- spoiled$y[4] + 5
for (data in list(cvd, spoiled)) {
  fitted <- lm(y ~ c1 + c2 + I(c1^2) + I(c1 * c2) + I(c2^2), data)
  show("residuals", cbind(residual = residuals(fitted), internal = rstandard(fitted),
    external = rstudent(fitted), cook = cooks.distance(fitted)))
}
show("limit of outliers, Bonferroni at 5 %", qt(1 - 0.05 / (2 * 11), 11 - 6 - 1))

# Each coded term given all others (type III).
show("partial tests", drop1(coded, . ~ ., test = "F"))
show("p of partial tests", drop1(coded, . ~ ., test = "F")$`Pr(>F)`)

show("canonical directions", eigen(B))

# The largest and the smallest value at a distance from the middle of the coded inputs: by the
# multiplier (Draper: Technometrics 5 (1963)).
ridge <- function(radius, sign) {
  a <- eigen(sign * B)
  slopes <- t(a$vectors) %*% (sign * b[2:3])
  at <- function(mu) slopes / (2 * (mu - a$values))
  if (radius == 0) return(c(0, 0))
  top <- max(a$values)
  excess <- function(gap) sum(at(top + gap)^2) - radius^2
  gap <- uniroot(excess, c(1e-12, sqrt(sum(slopes^2)) / radius), tol = 1e-15)$root
  as.vector(a$vectors %*% at(top + gap))
}
for (sign in c(1, -1)) {
  show(paste("ridge", sign), t(sapply(seq(0, 1, 0.25), function(radius) {
    x <- ridge(radius, sign)
    at <- data.frame(c1 = x[1], c2 = x[2])
    p <- predict(coded, at, se.fit = TRUE)
    c(radius, 42 + 38 * x[1], 6 + 4 * x[2], p$fit, p$se.fit)
  })))
}

# Chosen terms.
show("chosen terms", summary(lm(y ~ V1 + V2 + V1:V2, cvd))$coefficients)

# Box-Cox: the power of greatest profile likelihood and its 95 % limits; the second output is the
# exponential of the first.
likelihood <- function(lambda, y) {
  z <- y / exp(mean(log(y)))
  w <- if (abs(lambda) < 1e-12) log(z) else (z^lambda - 1) / lambda
  fitted <- lm(w * exp(mean(log(y))) ~ c1 + c2 + I(c1^2) + I(c1 * c2) + I(c2^2), cvd)
  n <- length(y)
  -n / 2 * (log(2 * pi * sum(residuals(fitted)^2) / n) + 1)
}
for (y in list(cvd$y, exp(cvd$y))) {
  best <- optimize(likelihood, c(-2, 2), y = y, maximum = TRUE, tol = 1e-10)
  level <- best$objective - qchisq(0.95, 1) / 2
  end <- function(from) {
    if (likelihood(from, y) > level) return(from)
    uniroot(function(l) likelihood(l, y) - level, sort(c(from, best$maximum)), tol = 1e-10)$root
  }
  show("Box-Cox", c(best$maximum, end(-2), end(2), best$objective))
}

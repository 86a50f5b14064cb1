# Produces the figures of weighted cases and of blocks that ResponseSurfaceDesignTest.cpp compares
# with, by R's own lm, anova and predict. Run: Rscript response_surface_designs.R
options(digits = 15)

# Chemical vapour deposition, NIST/SEMATECH e-Handbook of Statistical Methods, 5.4.7.3.
cvd <- data.frame(
  V1 = c(80, 42, 68.87, 15.13, 4, 42, 15.13, 42, 68.87, 42, 42),
  V2 = c(6, 6, 3.17, 8.83, 6, 6, 3.17, 2, 8.83, 10, 6),
  y = c(4.6, 6.2, 3.4, 6.9, 7.3, 6.4, 8.6, 6.3, 5.1, 5.4, 5.0))
code <- function(x) (x - (max(x) + min(x)) / 2) / ((max(x) - min(x)) / 2)
cvd$c1 <- code(cvd$V1)
cvd$c2 <- code(cvd$V2)
cvd$w <- c(1, 2, 1, 3, 1, 2, 1, 1, 2, 1, 4)
cvd$w <- cvd$w / mean(cvd$w)
cvd$equal <- 1
cvd$block <- factor(c(1, 2, 1, 2, 3, 2, 1, 3, 2, 3, 3))
options(contrasts = c("contr.sum", "contr.poly"))

report <- function(what, start, data, cell) {
  cat("\n######", what, "\n")
  fit <- function(rhs) eval(bquote(lm(.(as.formula(paste("y ~", rhs))), data, weights = w)))
  linear <- fit(paste(start, "+ c1 + c2"))
  interaction <- fit(paste(start, "+ c1 + c2 + I(c1 * c2)"))
  whole <- fit(paste(start, "+ c1 + c2 + I(c1 * c2) + I(c1^2) + I(c2^2)"))
  raw <- fit(paste(start, "+ V1 + V2 + I(V1^2) + I(V1 * V2) + I(V2^2)"))
  print(summary(raw)$coefficients)
  print(summary(whole)$coefficients)
  print(anova(fit("1"), fit(start), linear, interaction, whole))
  print(anova(fit("1"), fit(start), linear, interaction, whole)$`Pr(>F)`)
  print(anova(fit("1"), whole))
  print(anova(whole, fit(cell)))
  print(drop1(whole, . ~ ., test = "F"))
  h <- hatvalues(whole)
  e <- residuals(whole)
  w <- data$w
  total <- sum(w * (data$y - weighted.mean(data$y, w))^2)
  press <- sum(w * (e / (1 - h))^2)
  n <- nrow(data)
  k <- length(coef(whole)) + 1
  print(c(r2 = summary(whole)$r.squared, adjusted = summary(whole)$adj.r.squared,
    rmse = summary(whole)$sigma, press = press, predicted = 1 - press / total, total = total,
    logLik = as.numeric(logLik(whole)), aicc = AIC(whole) + 2 * k * (k + 1) / (n - k - 1)))
  print(cbind(residual = e, leverage = h, internal = rstandard(whole), external = rstudent(whole),
    cook = cooks.distance(whole)))
  # Refits without the first and the fourth case: predictions there, and their standard errors.
  for (i in c(1, 4)) {
    rest <- update(whole, data = data[-i, ], weights = data$w[-i])
    p <- predict(rest, data[i, ], se.fit = TRUE)
    print(c(i, p$fit, sqrt(p$se.fit^2 + p$residual.scale^2 / data$w[i])))
  }
  whole
}

weighted <- report("weights", "1", cvd, "factor(paste(V1, V2))")
point <- data.frame(c1 = (30 - 42) / 38, c2 = (5 - 6) / 4)
p <- predict(weighted, point, se.fit = TRUE)
print(c(p$fit, p$se.fit))

blocked <- cvd
blocked$w <- 1
whole <- report("blocks", "block", blocked, "factor(paste(V1, V2, block))")
# The average block: all columns of the contrasts are 0.
b <- coef(whole)
x <- c(1, 0, 0, point$c1, point$c2, point$c1 * point$c2, point$c1^2, point$c2^2)
print(c(sum(b * x), sqrt(t(x) %*% vcov(whole) %*% x)))
print(c(b["block1"], b["block2"], -b["block1"] - b["block2"]))

both <- report("weights and blocks", "block", cvd, "factor(paste(V1, V2, block))")
b <- coef(both)
print(c(sum(b * x), sqrt(t(x) %*% vcov(both) %*% x)))

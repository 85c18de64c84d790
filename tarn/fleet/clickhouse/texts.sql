-- The texts of some rows.
SELECT sipHash64(host), sipHash64(place), since, place, pointer, scope, value
FROM history
WHERE host IN ({hosts}) AND (sipHash64(host), sipHash64(place), since) IN ({rows})
FORMAT RowBinary

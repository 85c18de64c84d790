-- The texts of some rows.
SELECT bitXor(bitXor(sipHash64(host), sipHash64(place)), toUInt64(since)) AS row, place, pointer, scope, value
FROM history
WHERE host IN ({hosts}) AND row IN ({rows})
FORMAT RowBinary

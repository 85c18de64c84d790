-- The values that hold now at a pointer, on how many hosts, and in how many facts.
SELECT newest, uniqExact(host) AS hosts, count() AS facts
FROM (
  -- The newest row of each host and place.
  SELECT host, place, argMax(value, since) AS newest, argMax(there, since) AS holds
  FROM fact
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
  GROUP BY place, host
  UNION ALL
  SELECT host, place, argMax(value, since) AS newest, toUInt8(1) AS holds
  FROM latest
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
  GROUP BY place, host
)
WHERE holds = 1 AND place LIKE {like}
GROUP BY newest
ORDER BY hosts DESC, newest

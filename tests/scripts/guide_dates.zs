# Recipe: a date. A new object holds the current local time; set the fields
# you need. Nothing checks them: a month of 13 stays 13.
d = new 工具.日期时间类
expect d.月 >= 1
expect d.月 <= 12
d.年 = 2024
d.月 = 3
d.日 = 5
d.时 = 9
d.分 = 30
d.秒 = 0
print d.到文本()
print d.时, d.分, d.秒
d.月 = 13
print d.到文本()
# As map keys all dates are one key: keep dates as texts to index by them.
m = new 工具.映射表
other = new 工具.日期时间类
m.置键值(d, d)
print m.键是否存在(other)

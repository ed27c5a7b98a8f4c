x = new 缺失.类
